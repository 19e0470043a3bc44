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

} // namespace Trovio::Nodes
