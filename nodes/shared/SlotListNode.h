#pragma once

#include "trovio/Node.h"

namespace Trovio::Nodes {

/// A node whose settings say which slots it has, each under its own name.
/// Ownership: the derived node owns the slots.
class SlotListNode : public Node {
protected:
    /// From configure(): first removes what an earlier one added, while those slots are still there, then adds.
    void removeSlots();
    void addSlot(BasicInSlot& slot);
    void addSlot(BasicOutSlot& slot);

private:
    std::vector<std::string> _labels; // of what was added
};

} // namespace Trovio::Nodes
