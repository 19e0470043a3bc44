#include "nodes/osc/OscNode.h"

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, {&Trovio::Nodes::OscNode::getEntry(), 1}};
    return &module;
}
