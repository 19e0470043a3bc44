#pragma once

#include "benchmarks/start/PatternByHand.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"
#include <memory>
#include <unordered_map>

namespace Bench {

/// Slots by label and routes between patterns, in standard containers: an out-slot that a pattern matches is aimed at a
/// label, and joined to the in-slot there while there is one. Slots and routes come and go in any order.
template <class Value>
class RoutesByHand {
public:
    using Out = Trovio::OutSlot<Value>;
    using In = Trovio::InSlot<Value>;

    void addRoute(const std::string& from, const std::string& to)
    {
        Route& route = *_routes.emplace(from, std::make_unique<Route>(from, to)).first->second;
        _inTurn.push_back(&route);
        for (auto& [label, start] : _outs)
            tryToAim(route, label, start);
    }
    void removeRoute(const std::string& from)
    {
        const auto found = _routes.find(from);
        while (!found->second->_aims.empty())
            drop(*found->second->_aims.back());
        std::erase(_inTurn, found->second.get());
        _routes.erase(found);
    }

    void addSlot(const std::string& label, Out& slot)
    {
        Start& start = _outs.emplace(label, Start{&slot, {}}).first->second;
        for (Route* route : _inTurn)
            tryToAim(*route, label, start);
    }
    void addSlot(const std::string& label, In& slot)
    {
        _ins.emplace(label, &slot);
        eachAimAt(label, [&](Out& out) { out.connect(&slot); });
    }
    void removeOut(const std::string& label)
    {
        const auto found = _outs.find(label);
        while (!found->second._aims.empty())
            drop(*found->second._aims.back());
        _outs.erase(found);
    }
    void removeIn(const std::string& label)
    {
        const auto found = _ins.find(label);
        eachAimAt(label, [&](Out& out) { out.disconnect(found->second); });
        _ins.erase(found);
    }

private:
    struct Aim;
    struct Route {
        Route(const std::string& from, const std::string& to) : _from(from), _to(to) {}
        const PatternByHand _from, _to;
        std::vector<Aim*> _aims;
    };
    struct Start {
        Out* _slot;
        std::vector<Aim*> _aims;
    };
    struct Aim {
        const std::string* _target;
        Route* _route;
        Start* _start;
    };

    void tryToAim(Route& route, const std::string& label, Start& start)
    {
        if (!route._from.match(label, _stars))
            return;
        auto& [target, aim] = *_aims.emplace(route._to.expand(_stars), Aim{nullptr, &route, &start});
        aim._target = &target;
        route._aims.push_back(&aim);
        start._aims.push_back(&aim);
        if (const auto in = _ins.find(target); in != _ins.end())
            start._slot->connect(in->second);
    }

    void drop(Aim& aim)
    {
        if (const auto in = _ins.find(*aim._target); in != _ins.end())
            aim._start->_slot->disconnect(in->second);
        std::erase(aim._route->_aims, &aim);
        std::erase(aim._start->_aims, &aim);
        auto [found, end] = _aims.equal_range(*aim._target);
        while (&found->second != &aim)
            ++found;
        _aims.erase(found);
    }

    template <class Use>
    void eachAimAt(const std::string& label, Use use)
    {
        const auto [first, end] = _aims.equal_range(label);
        for (auto aim = first; aim != end; ++aim)
            use(*aim->second._start->_slot);
    }

    std::unordered_map<std::string, std::unique_ptr<Route>> _routes; // by the text of the pattern
    std::vector<Route*> _inTurn;
    std::unordered_map<std::string, Start> _outs;
    std::unordered_map<std::string, In*> _ins;
    std::unordered_multimap<std::string, Aim> _aims; // by the label that they lead to
    std::vector<std::string_view> _stars;
};

} // namespace Bench
