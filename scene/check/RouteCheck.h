#pragma once

#include "scene/check/SceneGraph.h"

#include <functional>
#include <map>

namespace Scenes {

/// Looks at the routes of one namespace in a graph, and says of those that can carry nothing why. Ends at nodes whose
/// slots nobody knows yet are not judged.
/// Ownership: refers to the graph and to the tree, which must live as long.
class RouteCheck {
public:
    using Note = std::function<void(Position position, const std::string& text)>;

    /// `path` is the label of the namespace in the root, empty for the root; `info` is what stands there.
    RouteCheck(const SceneGraph& graph, std::string path, const Trovio::NamespaceInfo& info);

    void check(const LocatedPair& route, const Note& note);

private:
    /// One end of a route, and what stands there.
    struct End {
        const LocatedText& _text;
        Trovio::Slot::Direction _direction;         // that the end of a route must have
        bool _isPattern = false;                    // then nothing is known of it here
        bool _isMet = false;                        // by a slot of that direction
        const Trovio::SlotInfo* _opposed = nullptr; // a slot of the other direction, where none has that one
        bool isMissing() const { return !_isPattern && !_isMet && !_opposed; }
    };
    End endAt(const LocatedText& text, Trovio::Slot::Direction direction) const;
    bool isThere(const std::string& label) const;
    bool checkDirections(const std::string& route, const End& from, const End& to, const Note& note) const;
    bool checkMissing(const std::string& route, const End& end, const Note& note);
    void checkPairs(const LocatedPair& route, const std::string& quoted, const Note& note) const;
    std::string whyOpposed(const End& end) const;
    const Explain::ScenePlaces::Sensor* sensorOf(const Trovio::SlotInfo& slot) const;
    std::string nearest(const End& end);

    const SceneGraph& _graph;
    const std::string _path;
    const Trovio::NamespaceInfo& _info;
    std::map<std::pair<std::string_view, std::string_view>, const Trovio::RouteInfo*> _routes;
    std::size_t _hintsLeft; // each looks at all labels
};
} // namespace Scenes
