#pragma once

#include "trovio/routing/Scope.h"

namespace Trovio {

using SlotViewList = std::vector<const SlotView*>;

/// The slots of a scope and of those below it, under the labels by which somebody who asks in that scope knows them.
/// Threads: the tree lock is held for as long as this lives.
class VisibleSlots {
public:
    /// A scope below the one that is asked, with its labels from there.
    struct Below {
        std::string _path;
        const Scope* _scope;
    };

    VisibleSlots(const Scope& here, std::vector<Below> below) : _here(here), _below(std::move(below)) {}

    const Scope& getScope() const { return _here; }

    /// The slots that the scope sees under the label.
    SlotViewList find(const std::string& label, Slot::Direction direction) const;
    /// All labels under which it sees one that is no tool's, in order.
    std::vector<std::string> labels(Slot::Direction direction) const;
    /// The home of a slot that a namespace below sees, written with or without the labels that lead there; null if none
    /// does.
    const SlotView* findBelow(const std::string& label, Slot::Direction direction) const;
    /// The nodes below of that type.
    std::vector<std::string> nodesOfType(const std::string& type) const;

    /// The label of a slot, by its home, in the scope, or else from it.
    std::string labelOf(const SlotView& home) const;
    std::string nameOf(const Scope& scope) const;

    /// The same, as a scope below sees it; or one above, where nothing is known of what stands beside this one.
    VisibleSlots at(const Scope& scope) const;

private:
    const Scope& _here;
    const std::vector<Below> _below;
};

} // namespace Trovio
