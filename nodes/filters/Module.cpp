// The module of every filter; the build says which one it is.
#include OSTREL_FILTER_HEADER

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, {&Trovio::Nodes::OSTREL_FILTER::getEntry(), 1}};
    return &module;
}
