#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Trovio {

/// A node whose out-slots send what goes into its in-slots, as it takes part in the graph of all such nodes.
/// Invariant: joints never lead in a circle.
/// Ownership: refers to its neighbours, who forget it when it goes.
/// Threads:   whoever holds the tree lock.
class Relay {
public:
    /// Which pair of slots a joint stands for; unique in the graph.
    using Key = std::pair<std::uint64_t, std::uint64_t>;

    /// Labels of an out-slot of one relay and of an in-slot of another. The texts live as long as the joint.
    struct Joint {
        const std::string* _from;
        const std::string* _to;
    };

    Relay() = default;
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// Notes that records go from this relay into another. Where that would close a loop, it changes nothing and
    /// returns the loop, joint by joint; otherwise nothing. Without memory it throws and changes nothing.
    std::vector<Joint> connect(Relay& to, Key key, const Joint& joint);

    /// Takes a joint away. True if no other one leads the same way.
    bool disconnect(Relay& to, Key key) noexcept;

private:
    class Search;
    static std::vector<Joint> findPath(Relay& from, Relay& to);

    std::map<Relay*, std::map<Key, Joint>> _next;
    std::set<Relay*> _previous;
};

} // namespace Trovio
