#pragma once

#include "trovio/routing/Connector.h"
#include <memory>

namespace Trovio {

class Node;

/// Everything that one namespace sees: slots under labels, the routes between these, and the external routes that show
/// slots to the parent's scope. It holds the labels; its Connector makes the connections.
/// Memory:    what adds either happens or, when it throws, has not happened; what takes away needs none.
/// Ownership: refers to slots and to the parent's scope.
/// Threads:   whoever holds the tree lock.
class Scope {
public:
    Scope() : _connector(_views, _routes) {}
    ~Scope() = default; // touches no slot: they may be gone
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

    /// Slots that stand here, not in a child. add throws Exception for a bad or taken label.
    void addSlot(const std::string& label, Slot& slot);
    void removeSlot(const std::string& label) noexcept;

    /// Says that the scope is a node's. It has no slots yet.
    void setNode(const Node& node) { _node = &node; }
    /// Says that what goes into the node's in-slots comes out of its out-slots, so that routes must not lead back.
    void setRelaying() { _relay = std::make_unique<Relay>(); }

    /// add throws Exception for a bad pattern, and for a route that would close a loop of nodes; remove returns false
    /// for an unknown route.
    void addRoute(const std::string& from, const std::string& to);
    bool removeRoute(const std::string& from, const std::string& to) noexcept;
    void addExternalRoute(const std::string& pattern, const std::string& target);
    bool removeExternalRoute(const std::string& pattern, const std::string& target) noexcept;

    /// Shows the slots to the parent's scope, for as long as it is attached.
    void attach(Scope& parent, const std::string& label);
    void detach() noexcept;

    /// See Connector.
    void startConnecting() { _connector.start(); }
    void stopConnecting() noexcept { _connector.stop(); }

    /// Undoes all connections and forgets slots and routes. Only while nothing of a child is shown here.
    void clear() noexcept;

    /// To be called, once, before the scope is destroyed.
    void leaveTree() noexcept { _connector.leaveTree(); }

    /// A view whose label matches, but for those of tools where the pattern has a '*'; null if none does.
    const SlotView* findMatch(const Pattern& pattern) const;

    // For who explains and shows.
    const std::string& getLabel() const { return _label; } // in the parent; empty without one
    const Node* getNode() const { return _node; }          // null if it is no node's
    bool isRelaying() const { return _relay != nullptr; }
    const SlotViews& getViews() const { return _views; }
    const ResolvedRoutes& getResolvedRoutes() const { return _resolved; }
    const RouteRules<Route>& getRoutes() const { return _routes; }
    const RouteRules<ExternalRoute>& getExternalRoutes() const { return _externalRoutes; }
    const Connector& getConnector() const { return _connector; }

private:
    SlotView* findOwn(const std::string& label) const;
    SlotView& insert(std::string label, const SlotRef& ref, ExternalRoute* shownBy, SlotView* origin);
    void spread(SlotView& view);
    void erase(SlotView& view) noexcept;
    void erase(Route& route) noexcept;
    void resolve(Route& route, SlotView& source, const std::vector<std::string_view>& matched);
    void drop(ResolvedRoute& resolved) noexcept;
    void show(ExternalRoute& route, SlotView& view, const std::vector<std::string_view>& matched);
    void hide(ExternalRoute& route) noexcept;
    std::vector<SlotView*> matching(const Pattern& pattern);

    SlotViews _views;
    ResolvedRoutes _resolved;
    RouteRules<Route> _routes;
    RouteRules<ExternalRoute> _externalRoutes;
    Connector _connector;
    const Node* _node = nullptr;
    std::unique_ptr<Relay> _relay;
    Scope* _parent = nullptr;
    std::string _label;
};

} // namespace Trovio
