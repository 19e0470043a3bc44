#pragma once

#include "trovio/Node.h"

namespace Trovio::Nodes {

/// A node whose settings say which slots it has, each under its own name, or what comes while it runs.
/// Ownership: the derived node owns the slots.
class SlotListNode : public Node {
protected:
    /// From configure(): first removes what an earlier one added, while those slots are still there, then adds.
    void removeSlots();
    void addSlot(BasicInSlot& slot);
    void addSlot(BasicOutSlot& slot);

    /// Adds all or, where one cannot be added, none, and throws what addOutSlot() does. Also from the node's own
    /// thread, between start() and the end of stop().
    void addSlots(const std::vector<BasicOutSlot*>& slots);

private:
    std::vector<std::string> _labels; // of what was added
};

} // namespace Trovio::Nodes
