#include "trovio/Node.h"
#include <cstdlib>

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeTypeEntry type{"OldVersion", "must never be built", {}, [] {
                                                std::abort();
                                                return std::unique_ptr<Trovio::Node>();
                                            }};
    static const Trovio::NodeModule module{Trovio::NodeModule::Version - 1, {&type, 1}};
    return &module;
}
