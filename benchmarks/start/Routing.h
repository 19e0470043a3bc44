#pragma once

#include "benchmarks/road/Road.h"
#include "benchmarks/start/RoutesByHand.h"
#include "benchmarks/start/Steps.h"
#include "trovio/Namespace.h"

namespace Bench {

/// Pairs of slots and the patterns that join them, each pattern as many: "device7/*" with "sink7/*".
class RoutedSlots {
public:
    using Value = Trovio::Vec3<float>;
    static constexpr std::size_t patterns = 100;

    explicit RoutedSlots(std::size_t slots)
    {
        for (std::size_t i = 0; i < slots / 2; ++i) {
            const std::string place = std::to_string(i % patterns) + "/" + std::to_string(i);
            _pairs.push_back({"device" + place, "sink" + place, std::make_unique<Trovio::OutSlot<Value>>("out"),
                              std::make_unique<Trovio::InSlot<Value>>("in")});
        }
    }

    Sample byLibrary() const
    {
        const OpenRoot root;
        Trovio::Namespace ns;
        return run([&](const auto& from, const auto& to) { ns.addRoute(from, to); },
                   [&](const auto& from, const auto& to) { ns.removeRoute(from, to); },
                   [&](const Pair& pair) {
                       ns.addOutSlot(pair._from, pair._out.get());
                       ns.addInSlot(pair._to, pair._in.get());
                   },
                   [&](const Pair& pair) {
                       ns.removeSlot(pair._from);
                       ns.removeSlot(pair._to);
                   });
    }

    Sample byHand() const
    {
        RoutesByHand<Value> routes;
        return run([&](const auto& from, const auto& to) { routes.addRoute(from, to); },
                   [&](const auto& from, const auto&) { routes.removeRoute(from); },
                   [&](const Pair& pair) {
                       routes.addSlot(pair._from, *pair._out);
                       routes.addSlot(pair._to, *pair._in);
                   },
                   [&](const Pair& pair) {
                       routes.removeOut(pair._from);
                       routes.removeIn(pair._to);
                   });
    }

private:
    struct Pair {
        std::string _from, _to;
        std::unique_ptr<Trovio::OutSlot<Value>> _out;
        std::unique_ptr<Trovio::InSlot<Value>> _in;
    };

    /// All slots come, under routes that stand; the routes go, and come back to slots that stand; all slots go.
    template <class AddRoute, class RemoveRoute, class AddPair, class RemovePair>
    Sample run(AddRoute addRoute, RemoveRoute removeRoute, AddPair addPair, RemovePair removePair) const
    {
        const auto eachRoute = [](auto step) {
            for (std::size_t i = 0; i < patterns; ++i)
                step("device" + std::to_string(i) + "/*", "sink" + std::to_string(i) + "/*");
        };
        const auto eachPair = [&](auto step) {
            for (const Pair& pair : _pairs)
                step(pair);
        };
        eachRoute(addRoute);
        Steps steps(2 * _pairs.size());
        steps.time([&] { eachPair(addPair); });
        expectJoined(true);
        steps.time([&] { eachRoute(removeRoute); });
        expectJoined(false);
        steps.time([&] { eachRoute(addRoute); });
        expectJoined(true);
        steps.time([&] { eachPair(removePair); });
        expectJoined(false);
        return steps.sample();
    }

    /// Whoever does not join all pairs has done less work.
    void expectJoined(bool joined) const
    {
        for (const Pair& pair : _pairs) {
            pair._out->push({});
            if (pair._in->empty() == joined)
                throw std::logic_error("a pair of slots is " + std::string(joined ? "not joined" : "still joined"));
            if (joined)
                pair._in->pop();
        }
    }

    std::vector<Pair> _pairs;
};

} // namespace Bench
