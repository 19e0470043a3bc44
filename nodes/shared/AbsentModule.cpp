#include "trovio/Exception.h"
#include "trovio/Node.h"

// Stands in for the module of a node type whose library was missing when everything was built, and says what to
// install.
const Trovio::NodeModule* trovioNodeModule()
{
    static constexpr auto create = []() -> std::unique_ptr<Trovio::Node> {
        throw Trovio::InvalidNodeException("this program was built without the node type " OSTREL_ABSENT_TYPE
                                           ": install the Debian " OSTREL_ABSENT_PACKAGES ", and build it again");
    };
    static const Trovio::NodeTypeEntry entry{
        OSTREL_ABSENT_TYPE, "not available: built without the " OSTREL_ABSENT_PACKAGES, {}, create};
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, {&entry, 1}};
    return &module;
}
