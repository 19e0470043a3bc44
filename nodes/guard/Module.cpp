#include "nodes/guard/Guard.h"

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, {&Trovio::Nodes::Guard::getEntry(), 1}};
    return &module;
}
