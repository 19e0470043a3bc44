#pragma once

#include "trovio/NodeModule.h"
#include <string>
#include <vector>

namespace Trovio {

/// One line of the listing of node types.
struct NodeTypeInfo {
    std::string _name;
    std::string _description;
    std::vector<Setting> _settings; // valid until Root::shutdown()
    std::string _origin;            // the module's file, or "built in"
    std::string _problem;           // why the type cannot be used; empty when it can
};

/// The node types of this process: those that the program added, and those of modules, which load when first asked
/// for, from the folders of TROVIO_NODE_PATH and then from the folder trovio/ beside this library.
/// Threads: any thread. No lock is held while a module loads or a node is built.
class NodeType {
public:
    /// A new node of the type, not yet configured, loading its module if need be.
    /// Throws InvalidNodeException with a text that says what to do.
    static std::unique_ptr<Node> newInstance(const std::string& name);

    /// Adds a type of the program itself. Throws InvalidNodeException for a bad or a taken name.
    static void add(const NodeTypeEntry& type);
    /// Takes such a type away again; unknown names do nothing.
    static void remove(const std::string& name);

    /// All types that there are, by name: loads every module found, and lists those that cannot be loaded too.
    static std::vector<NodeTypeInfo> list();

    /// The names of all types that are there or have a module of that name, in order; loads nothing.
    static std::vector<std::string> names();

private:
    friend class Root;
    /// Forgets all types and closes all modules but those that want to stay.
    static void shutdown();
};

} // namespace Trovio
