#include "nodes/generator/Generator.h"

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, {&Trovio::Nodes::Generator::getEntry(), 1}};
    return &module;
}
