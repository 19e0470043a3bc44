#include "trovio/Exception.h"
#include "trovio/Node.h"

// Stands in for the module where the DDS library was missing when everything was built.
const Trovio::NodeModule* trovioNodeModule()
{
    static constexpr auto create = []() -> std::unique_ptr<Trovio::Node> {
        throw Trovio::InvalidNodeException("this program was built without the node type DDS: install the Debian "
                                           "packages cyclonedds-dev and cyclonedds-tools, and build it again");
    };
    static const Trovio::NodeTypeEntry entry{"DDS", "not available: built without the DDS library", {}, create};
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, {&entry, 1}};
    return &module;
}
