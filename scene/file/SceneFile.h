#pragma once

#include "scene/toml/TomlValue.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Scenes {

/// Something that a scene file says, and where.
template <class T>
struct Located {
    T _value{};
    Position _position;
};
using LocatedText = Located<std::string>;

/// Two texts in a list or two keys: node type and settings, or the ends of a route or link.
struct LocatedPair {
    LocatedText _first;
    LocatedText _second;
};

/// What is done with the values on a route: its third text. Once read it has become nodes and routes, which stand
/// behind those that were written, conversion by conversion: a node and a further route for each filter.
struct RouteConversion {
    std::size_t _route; // number in the handler's list
    LocatedText _text;
    std::size_t _filters = 0; // that it became
};

constexpr std::string_view bridgeKind = "Trovio"; // the kind of handler that has nodes and routes between labels
constexpr double defaultRate = 60;                // frames per second
constexpr double maxRate = 10'000;                // frames per second
constexpr std::int64_t maxBuffer = 1'000'000;     // values of one sensor
constexpr std::uint64_t defaultMemory = 1u << 30; // bytes of the slots and buffers of all sensors
constexpr std::size_t maxEntries = 100'000;       // of one kind: sensors, links, routes in one place
constexpr std::size_t maxNodes = 1'000;           // of one handler, each with a thread or two; and handlers

struct HostEntry {
    Located<double> _rate{defaultRate, {}};
    Located<std::uint64_t> _memory{defaultMemory, {}};
    LocatedText _monitor; // where a run answers on TCP; empty for nowhere
};

/// One [[handler]]; nodes become its parameters, routes its labels.
struct HandlerEntry {
    LocatedText _kind;
    LocatedText _name;
    LocatedText _url{"file:.", {}};
    std::vector<LocatedPair> _nodes;
    std::vector<LocatedPair> _routes;
    std::vector<RouteConversion> _conversions;
};

/// One [[sensor]]. Without a label nothing can reach it, which is allowed and said at start.
struct SensorEntry {
    LocatedText _name;
    LocatedText _type;
    LocatedText _label;
    LocatedText _description;
    Located<unsigned> _buffer;
    Located<bool> _output;
    std::optional<TomlValue> _value;
};

/// What one scene file says, in its order. Names and texts are checked where the file alone can tell.
struct SceneFile {
    std::string _path;
    std::string _text;           // of the file, as it was read
    std::uint32_t _checksum = 0; // CRC-32 of the text
    HostEntry _host;
    std::vector<HandlerEntry> _handlers;
    std::vector<SensorEntry> _sensors;
    std::vector<LocatedPair> _routes; // between labels of the root
    std::vector<LocatedPair> _links;  // "sensor.value" to "sensor.value"
};
} // namespace Scenes
