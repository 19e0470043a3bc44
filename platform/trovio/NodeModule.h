#pragma once

#include "trovio/Setting.h"
#include <memory>
#include <span>

namespace Trovio {

class Node;

/// One node type, as a module or a program offers it.
struct NodeTypeEntry {
    const char* _name = "";        // [A-Za-z0-9_]+
    const char* _description = ""; // one line
    std::span<const Setting> _settings{};
    std::unique_ptr<Node> (*_create)() = nullptr; // may throw; the type is then refused with the text
};

/// What a module offers. A module is the library trovio-node-NAME.so, found by the name of a type in it, and exports
/// one function, trovioNodeModule(). Nothing in it registers itself or throws while it is loaded.
struct NodeModule {
    static constexpr unsigned Version = 2; // raised whenever something here, or in what nodes are built on, changes

    unsigned _version; // first: the only thing that is read before it is known to fit
    std::span<const NodeTypeEntry> _types;
    bool _resident = false; // stay loaded after shutdown, for libraries that cannot be unloaded
};

} // namespace Trovio

/// The one export of a module.
extern "C" [[gnu::visibility("default")]] const Trovio::NodeModule* trovioNodeModule();
