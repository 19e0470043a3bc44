// The module of every node type here; the build says which one it is.
#include OSTREL_NODE_HEADER

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{
        Trovio::NodeModule::Version, {&Trovio::Nodes::OSTREL_NODE_CLASS::getEntry(), 1}, OSTREL_NODE_RESIDENT != 0};
    return &module;
}
