#pragma once

#include "trovio/routing/RouteRules.h"
#include "trovio/routing/SlotRef.h"
#include <unordered_set>

// What stands in a scope. All of it is made and destroyed by its Scope, under the tree lock, and linked through itself.
namespace Trovio {

class Scope;
struct ExternalRoute;
struct ResolvedRoute;
struct Route;

// Kinds of chains, by what they hang on.
struct OfLabel;
struct OfOrigin;
struct OfExternalRoute;
struct OfRoute;
struct OfSource;

/// A slot under one of the labels under which a scope sees it. The slot's home is its view in the scope where it
/// stands; from there each external route that matches makes one more in the parent.
struct SlotView : Linked<SlotView, OfLabel>, Linked<SlotView, OfOrigin>, Linked<SlotView, OfExternalRoute> {
    SlotView(const std::string& label, Scope& scope, const SlotRef& ref, ExternalRoute* shownBy, SlotView* origin)
        : _label(label), _scope(&scope), _ref(ref), _shownBy(shownBy), _origin(origin)
    {
    }

    /// The view in the scope where the slot stands.
    const SlotView& home() const
    {
        const SlotView* view = this;
        while (view->_origin)
            view = view->_origin;
        return *view;
    }

    const std::uint64_t _serial = nextSerial();
    const std::string& _label; // the key under which it is kept
    Scope* const _scope;
    const SlotRef _ref;
    ExternalRoute* const _shownBy;           // of the child that shows it; null for a slot of our own
    SlotView* const _origin;                 // in that child's scope
    Chain<ResolvedRoute, OfSource> _leading; // where routes lead from it
    Chain<SlotView, OfOrigin> _shown;        // as it is seen in the parent
};

/// A route applied to an out-slot: the label of the in-slot that it leads to.
struct ResolvedRoute : Linked<ResolvedRoute, OfLabel>, Linked<ResolvedRoute, OfRoute>, Linked<ResolvedRoute, OfSource> {
    ResolvedRoute(const std::string& target, Route& route, SlotView& source)
        : _target(target), _route(&route), _source(&source)
    {
    }

    const std::uint64_t _serial = nextSerial();
    const std::string& _target; // the key under which it is kept
    Route* const _route;
    SlotView* const _source;
};

/// A rule that joins out-slots with in-slots.
struct Route : ListedRule<Route> {
    using ListedRule::ListedRule;
    Chain<ResolvedRoute, OfRoute> _resolved; // one for each out-slot that it matches
    std::size_t _connections = 0;
    std::unordered_set<std::string> _reported; // problems that the log has seen
};

/// A rule that shows slots to the parent's scope.
struct ExternalRoute : ListedRule<ExternalRoute> {
    using ListedRule::ListedRule;
    Chain<SlotView, OfExternalRoute> _shown; // what the parent sees by it
};

/// What a scope sees, by label.
using SlotViews = LabelIndex<SlotView, OfLabel>;
/// What its routes lead to, by the label of the target.
using ResolvedRoutes = LabelIndex<ResolvedRoute, OfLabel>;

} // namespace Trovio
