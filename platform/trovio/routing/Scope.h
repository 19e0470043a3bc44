#pragma once

#include "trovio/Inspection.h"
#include "trovio/routing/ByLabel.h"
#include "trovio/routing/Relay.h"
#include "trovio/routing/RouteRules.h"
#include <map>
#include <unordered_set>
#include <vector>

namespace Trovio {

class BasicInSlot;
class BasicOutSlot;
class Node;

/// Everything that one namespace sees: slots under labels, the routes that join them, and the external routes that
/// show them to the parent's scope.
/// Invariant: while the scope is connecting, an out-slot and an in-slot are connected once for every route that leads
///            from the one's label to the other's, if their value types are equal and no loop of nodes is closed;
///            otherwise not by routes at all.
/// Memory:    what adds either happens or, when it throws, has not happened; what takes away needs none.
/// Ownership: refers to slots and to the parent's scope.
/// Threads:   whoever holds the tree lock.
class Scope : public Linked<Scope, struct HoldingBack> {
public:
    Scope() = default;
    ~Scope() = default; // touches no slot: they may be gone
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    /// Slots that stand here, not in a child. add throws Exception for a bad or taken label.
    void addSlot(const std::string& label, BasicInSlot& slot);
    void addSlot(const std::string& label, BasicOutSlot& slot);
    void removeSlot(const std::string& label) noexcept;

    /// Says that the scope is a node's. It has no slots yet.
    void setNode(const Node& node) { _node = &node; }
    /// Says that what goes into the node's in-slots comes out of its out-slots, so that routes must not lead back.
    void setRelaying() { _relay = std::make_unique<Relay>(); }

    bool isRelaying() const { return _relay != nullptr; }

    /// add throws Exception for a bad pattern, and for a route that would close a loop of nodes; remove returns false
    /// for an unknown route.
    void addRoute(const std::string& from, const std::string& to);
    bool removeRoute(const std::string& from, const std::string& to) noexcept;
    void addExternalRoute(const std::string& pattern, const std::string& target);
    bool removeExternalRoute(const std::string& pattern, const std::string& target) noexcept;

    /// Shows the slots to the parent's scope, for as long as it is attached.
    void attach(Scope& parent, const std::string& label);
    void detach() noexcept;

    /// Makes all connections, and those that routes ask for from now on. A new scope does so from the beginning.
    void startConnecting();
    /// Undoes all connections and makes no more.
    void stopConnecting() noexcept;

    /// Undoes all connections and forgets slots and routes. Only while nothing of a child is shown here.
    void clear() noexcept;

    /// To be called, once, before the scope is destroyed.
    void leaveTree() noexcept;

    void inspect(NamespaceInfo& info) const;

private:
    friend class FlowQuery;
    friend class FlowSearch;
    struct Aim;
    struct Entry;
    struct Route;
    struct ExternalRoute;

    struct Ends {
        Slot* _slot;
        Relay* _relay; // of the node that the slot belongs to; null where nothing is relayed

        /// One of these two is null.
        BasicInSlot* in() const;
        BasicOutSlot* out() const;
    };

    // Kinds of chains: by what they hang on.
    struct OfLabel;
    struct OfOrigin;
    struct OfShower;
    struct OfRoute;
    struct OfEntry;

    /// A route applied to an out-slot: the label of the in-slot that it leads to.
    struct Aim : Linked<Aim, OfLabel>, Linked<Aim, OfRoute>, Linked<Aim, OfEntry> {
        Aim(const std::string& target, Route& route, Entry& from) : _target(target), _route(&route), _from(&from) {}

        const std::uint64_t _serial = _nextSerial++;
        const std::string& _target; // the key under which it is kept
        Route* const _route;
        Entry* const _from;
    };

    /// A slot under one of the labels under which it is seen here.
    struct Entry : Linked<Entry, OfLabel>, Linked<Entry, OfOrigin>, Linked<Entry, OfShower> {
        Entry(const std::string& label, Scope& scope, const Ends& ends, ExternalRoute* shownBy, Entry* origin)
            : _label(label), _scope(&scope), _ends(ends), _shownBy(shownBy), _origin(origin)
        {
        }

        const std::uint64_t _serial = _nextSerial++;
        const std::string& _label; // the key under which it is kept
        Scope* const _scope;
        const Ends _ends;
        ExternalRoute* const _shownBy; // of the child that shows it; null for a slot of our own
        Entry* const _origin;          // in that child's scope
        Chain<Aim, OfEntry> _aims;     // where routes lead from it
        Chain<Entry, OfOrigin> _shown; // as it is seen in the parent
    };

    struct Route : ListedRule<Route> {
        using ListedRule::ListedRule;
        Chain<Aim, OfRoute> _aims;
        std::size_t _connections = 0;
        std::unordered_set<std::string> _reported; // mismatches that the log has seen
    };

    struct ExternalRoute : ListedRule<ExternalRoute> {
        using ListedRule::ListedRule;
        Chain<Entry, OfShower> _shown; // what the parent sees by it
    };

    void addOwn(const std::string& label, const Ends& ends);
    Entry* findOwn(const std::string& label) const;
    Entry& insert(std::string label, const Ends& ends, ExternalRoute* shownBy, Entry* origin);
    void spread(Entry& entry);
    void erase(Entry& entry) noexcept;
    void erase(Route& route) noexcept;
    void aim(Route& route, Entry& from, const std::vector<std::string_view>& matched);
    void drop(Aim& aim) noexcept;
    void show(ExternalRoute& route, Entry& entry, const std::vector<std::string_view>& matched);
    void hide(ExternalRoute& route) noexcept;
    std::vector<Entry*> matching(const Pattern& pattern);
    std::vector<const Entry*> sortedEntries() const;

    struct RelayPair {
        const Entry* _from;
        const Entry* _to;
    };

    /// A pair that a route would join, if that did not close a loop of nodes.
    struct Looping {
        const Aim* _aim;
        const Entry* _to;
        std::string _reason;
    };

    void join(const Aim& aim, const Entry& to);
    void part(const Aim& aim, const Entry& to) noexcept;
    void joinAll(const Aim& aim);
    void partAll(const Aim& aim) noexcept;
    void joinAll(const Route& route);
    void partAll(const Route& route) noexcept;
    static bool fits(const Aim& aim, const Entry& to);
    static bool relays(const Entry& from, const Entry& to);
    static std::string connect(const Aim& aim, const Entry& to);
    void holdBack(const Aim& aim, const Entry& to, const std::string& reason);
    std::vector<RelayPair> relayPairs(const Route& route, const std::vector<Entry*>& starts) const;
    void refuseLoop(const Route& route, const std::vector<Entry*>& starts) const;
    void forgetLooping(Relay::Key key) noexcept;
    static void retryLooping() noexcept;
    void retryOwnLooping() noexcept;
    static std::string spellLoop(const RouteRule& route, const std::vector<Relay::Joint>& loop);
    std::string mismatch(const Aim& aim, const Entry& to) const;
    std::string whyApart(const Aim& aim, const Entry& to) const;
    static std::string wrongWay(const Route& route, const std::string& label, const char* is, const char* must);
    static std::string tooLong(const RouteRule& route, const std::string& label);
    static void report(Route& route, const std::string& problem);

    static SlotInfo inspectSlot(const Entry& entry);
    const Entry* findMatch(const Pattern& pattern) const;
    RouteInfo inspectRoute(const Route& route) const;
    std::string pendingReason(const Route& route, const RouteInfo& info) const;

    ByLabel<Entry, OfLabel> _entries;
    ByLabel<Aim, OfLabel> _aims;
    RouteRules<Route> _routes;
    RouteRules<ExternalRoute> _externalRoutes;
    std::map<Relay::Key, Looping> _looping;
    const Node* _node = nullptr;
    std::unique_ptr<Relay> _relay;
    Scope* _parent = nullptr;
    std::string _label; // in the parent
    bool _connecting = true;
    // Under the tree lock like everything here.
    static std::uint64_t _nextSerial;
    static Chain<Scope, HoldingBack> _withLooping; // those that hold pairs back
    static bool _retryDue;                         // a joint went, so one of these may be joined now
};

} // namespace Trovio
