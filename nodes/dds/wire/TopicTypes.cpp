#include "nodes/dds/wire/TopicTypes.h"

#include "nodes/dds/wire/RosTypes.h"
#include "nodes/dds/wire/WireTypes.h"

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxTextLength = 80; // characters of a peer's words in a message

} // namespace

const dds_topic_descriptor_t* findTopicType(const std::string& slotType, const DdsFormat& format)
{
    const dds_topic_descriptor_t* found = nullptr;
    if (format._isRos)
        forEachRosType([&]<class T>(TypeTag<T>) {
            if (TypeName<T>::getName() == slotType)
                found = &RosType<T>::descriptor();
        });
    else
        withSlotType(slotType, [&]<class T>(TypeTag<T>) { found = &WireType<T>::descriptor(); });
    return found;
}

std::string describeTopicType(const std::string& name)
{
    std::string found = "'" + name.substr(0, maxTextLength) + "'";
    forEachSlotType([&]<class T>(TypeTag<T>) {
        if (name == WireType<T>::descriptor().m_typename)
            found = TypeName<T>::getName();
    });
    forEachRosType([&]<class T>(TypeTag<T>) {
        if (name == RosType<T>::descriptor().m_typename)
            found = RosType<T>::Name;
    });
    return found;
}

std::string listRosTypes()
{
    std::string list;
    forEachRosType([&]<class T>(TypeTag<T>) {
        list += (list.empty() ? "" : ", ") + TypeName<T>::getName() + " (" + RosType<T>::Name + ")";
    });
    return list;
}

} // namespace Trovio::Nodes
