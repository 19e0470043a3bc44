#pragma once

#include "explain/Graph.h"
#include "trovio/Inspection.h"

#include <optional>
#include <unordered_map>

namespace Monitor {

/// The slots of a tree, by what people call them, and what routes join.
/// Ownership: holds copies.
class SlotMap {
public:
    /// Trovio::Root::get().inspect(), and what scene files say of it.
    SlotMap(Trovio::NamespaceInfo root, Explain::ScenePlaces places);
    SlotMap(const SlotMap&) = delete;
    SlotMap& operator=(const SlotMap&) = delete;

    struct Place {
        const Trovio::SlotInfo* _slot; // where it stands, with its activity
        const Trovio::NodeInfo* _node; // whose slot it is; null if it is no node's
        std::string _label;            // as the root sees it; of a slot that it does not see, the way there
        bool _seen = false;            // by the root
        std::string _sensor{};         // that it serves, with "scene: " before it where there are several; or empty
        bool isOut() const { return _slot->_direction == Trovio::Slot::Direction::Out; }
    };
    /// In the order of the tree.
    const std::vector<Place>& all() const { return _all; }

    /// The label without its first namespace, where nothing else is called so; else empty.
    std::string shortLabelOf(const Place& place) const;

    /// The one slot that is meant: by its label, by the end of one that begins behind a slash, or by the name of a
    /// sensor. One of the wanted direction, where there is one. Null, and what is wrong with the text, where there is
    /// none, or several.
    const Place* find(const std::string& text, std::string& problem,
                      std::optional<Trovio::Slot::Direction> wanted = std::nullopt) const;

    /// The first slot that is called so, where all of these serve one sensor, as in several handlers; else null.
    const Place* findSensor(const std::string& text) const;

    /// By the way to where it stands; null if there is none.
    const Place* findByPath(const std::string& path) const;

    /// Those that are connected by a route, the out-slot first.
    struct Joint {
        const Place *_from, *_to;
    };
    const std::vector<Joint>& joints() const { return _joints; }
    /// The out-slots whose records come to the slot at once; an out-slot is its own.
    std::vector<const Place*> sourcesOf(const Place& place) const;

    /// A route, or a pair of slots on one, that does not connect.
    struct Gap {
        std::string _from, _to; // as the root calls them
        std::string _reason;
    };
    const std::vector<Gap>& gaps() const { return _gaps; }

    const Trovio::NamespaceInfo& root() const { return _root; }
    const Explain::ScenePlaces& places() const { return _places; }
    /// "scene: name" where there are several scenes.
    std::string titleOf(const Explain::ScenePlaces::Sensor& sensor) const;

private:
    void readSlots();
    void readRoutes(const std::string& path, const Trovio::NamespaceInfo& info);
    void indexNames();
    std::string whyNone(const std::string& text, const std::vector<const Place*>& found) const;

    const Trovio::NamespaceInfo _root;
    const Explain::ScenePlaces _places;
    std::vector<Place> _all;
    std::unordered_map<std::string, std::size_t> _byPath; // by the way to where the slot stands
    std::unordered_multimap<std::string, std::size_t> _byName;
    std::vector<Joint> _joints;
    std::vector<Gap> _gaps;
};

} // namespace Monitor
