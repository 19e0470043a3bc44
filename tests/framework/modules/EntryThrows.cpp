#include "trovio/NodeModule.h"
#include <stdexcept>

const Trovio::NodeModule* trovioNodeModule()
{
    throw std::runtime_error("no licence found");
}
