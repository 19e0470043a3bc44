#pragma once

#include "trovio/Slot.h"
#include "trovio/SlotCounts.h"
#include "trovio/Time.h"
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Copies of what stands in the tree at one moment, for tools that print or explain it.
namespace Trovio {

/// A slot as it is seen in one namespace.
struct SlotInfo {
    std::string _label;
    Slot::Direction _direction;
    std::string _typeName;
    bool _own = false; // stands in this namespace, rather than being seen through a child's external route
    std::string _home; // from here: labels of the namespaces down to the one where it stands, and its label there

    // Of a slot that stands here, and from findSlots() of every one: of the last two the one for its direction.
    bool _active = false; // it has a connection that is no tool's
    std::optional<OutSlotActivity> _out;
    std::optional<InSlotActivity> _in;
};

/// Two slots that a route would join.
struct RoutePair {
    std::string _from;
    std::string _to;
    std::string _reason; // why they are not connected; empty when they are
};

struct RouteInfo {
    std::string _from;
    std::string _to;
    std::vector<RoutePair> _pairs;
    std::size_t _connections = 0;
    std::string _reason; // why the route is pending; empty once it connects something
    bool isPending() const { return _connections == 0; }
};

struct ExternalRouteInfo {
    std::string _pattern;
    std::string _target;
    std::size_t _slots = 0; // how many it shows to the parent
};

/// Running, or degraded: it keeps trying.
struct NodeState {
    bool _degraded = false;
    std::string _reason;   // what is missing; while it runs what it uses, such as a device, or nothing
    Time _since;           // when the node came into this state
    std::string _overcome; // what was missing before it ran again; empty where nothing was

    /// "degraded, port 9000 is taken" or "running, uses device 'pad'; runs again for 3 s, was degraded: …"
    std::string describe(const Time& now) const;
};

struct CounterInfo {
    std::string _name;
    std::uint64_t _value = 0;
};

/// What a node knows of one of its slots beyond counts: of the newest value, or why there is none.
struct RemarkInfo {
    /// The clock that stamped the newest value, where that is another machine's.
    struct SourceClock {
        double _ahead; // seconds before ours
        double _bound; // seconds by which that may be wrong at most; infinite where nothing is known
    };

    std::string _slot; // its label in the node
    std::string _text;
    std::optional<SourceClock> _clock{};
};

struct NodeInfo {
    std::string _typeName;
    NodeState _state;
    std::vector<CounterInfo> _counters;
    std::vector<RemarkInfo> _remarks;
    bool _relays = false; // what goes into its in-slots comes out of its out-slots
};

struct NamespaceInfo {
    std::string _label; // empty for one without a parent
    bool _dirty = false;
    std::optional<NodeInfo> _node; // where the namespace is a node
    std::vector<SlotInfo> _slots;  // all that are seen here, by label
    std::vector<RouteInfo> _routes;
    std::vector<ExternalRouteInfo> _externalRoutes;
    std::vector<NamespaceInfo> _children; // by label
};

} // namespace Trovio
