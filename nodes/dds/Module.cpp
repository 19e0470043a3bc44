#include "nodes/dds/DdsNode.h"

const Trovio::NodeModule* trovioNodeModule()
{
    // Resident: threads that used the DDS library run its code once more when they end.
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, {&Trovio::Nodes::DdsNode::getEntry(), 1}, true};
    return &module;
}
