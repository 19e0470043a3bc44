#include "nodes/controller/ControllerNode.h"

const Trovio::NodeModule* trovioNodeModule()
{
    // Resident, for SDL and what it loads leave handlers behind that must not lose their code.
    static const Trovio::NodeModule module{
        Trovio::NodeModule::Version, {&Trovio::Nodes::ControllerNode::getEntry(), 1}, true};
    return &module;
}
