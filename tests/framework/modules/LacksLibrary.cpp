#include "trovio/NodeModule.h"

int absentFunction();

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version + unsigned(absentFunction()), {}};
    return &module;
}
