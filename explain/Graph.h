#pragma once

#include "trovio/Inspection.h"
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Explain {

/// What scene files say about a tree, for whoever draws it: where their handlers and sensors stand, and which fields
/// they link. Empty for a tree that no scene file made.
struct ScenePlaces {
    struct Handler {
        std::size_t _scene; // as in _scenes
        std::string _name;
        std::string _kind;
        std::string _path; // of its namespace; empty where its kind has none
    };
    struct Sensor {
        std::size_t _scene;
        std::string _name;
        auto operator<=>(const Sensor&) const = default;
    };
    /// Between fields: "grip.value".
    struct Link {
        std::size_t _scene;
        std::string _from, _to;
    };

    std::vector<std::string> _scenes; // paths of the files
    std::vector<Handler> _handlers;
    std::map<std::pair<std::string, std::string>, Sensor> _sensors; // by the path of the namespace and the label there
    std::map<std::string, std::string> _settings;                   // of nodes, by their paths, as the files give them
    std::vector<Link> _links;
    std::vector<std::uint32_t> _checksums; // CRC-32 of the text of each file

    /// The handler whose namespace has that path; null if there is none.
    const Handler* handlerAt(const std::string& path) const;
    /// The sensor that has the label in the namespace with that path; null if none has, such as in a node.
    const Sensor* sensorAt(const std::string& path, const std::string& label) const;
};

/// A tree as Trovio::Namespace::inspect() copies it, for people: a block for each handler and node, with its slots and
/// routes. Any thread, as the following.
std::string graphText(const Trovio::NamespaceInfo& root, const ScenePlaces& places = {});

/// The same as one JSON object, several lines long.
std::string graphJson(const Trovio::NamespaceInfo& root, const ScenePlaces& places = {});

/// The same for graphviz: a box for each handler and node, an arrow for each pair of slots that a route leads between,
/// red where it does not connect.
std::string graphDot(const Trovio::NamespaceInfo& root, const ScenePlaces& places = {});
} // namespace Explain
