#include "nodes/shared/SlotListNode.h"

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"

namespace Trovio::Nodes {

void SlotListNode::removeSlots()
{
    for (const std::string& label : _labels)
        removeSlot(label);
    _labels.clear();
}

void SlotListNode::addSlot(BasicInSlot& slot)
{
    _labels.push_back(slot.getName()); // first: without memory for it, nobody would remove the slot
    addInSlot(_labels.back(), &slot);
}

void SlotListNode::addSlot(BasicOutSlot& slot)
{
    _labels.push_back(slot.getName());
    addOutSlot(_labels.back(), &slot);
}

void SlotListNode::addSlots(const std::vector<BasicOutSlot*>& slots)
{
    const std::size_t before = _labels.size();
    std::size_t added = 0;
    try {
        for (; added < slots.size(); ++added)
            addSlot(*slots[added]);
    } catch (...) {
        for (std::size_t i = 0; i < added; ++i)
            removeSlot(_labels[before + i]);
        _labels.resize(before);
        throw;
    }
}

} // namespace Trovio::Nodes
