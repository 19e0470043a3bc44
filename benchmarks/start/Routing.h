#pragma once

#include "benchmarks/road/Road.h"
#include "benchmarks/start/Steps.h"
#include "trovio/InSlot.h"
#include "trovio/Namespace.h"
#include "trovio/OutSlot.h"
#include <memory>
#include <unordered_map>

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
        const auto eachRoute = [](auto step) {
            for (std::size_t i = 0; i < patterns; ++i)
                step("device" + std::to_string(i) + "/*", "sink" + std::to_string(i) + "/*");
        };
        return run([&] { eachRoute([&](const auto& from, const auto& to) { ns.addRoute(from, to); }); },
                   [&] { eachRoute([&](const auto& from, const auto& to) { ns.removeRoute(from, to); }); },
                   [&](const Pair& pair) {
                       ns.addOutSlot(pair._from, pair._out.get());
                       ns.addInSlot(pair._to, pair._in.get());
                   },
                   [&](const Pair& pair) {
                       ns.removeSlot(pair._from);
                       ns.removeSlot(pair._to);
                   });
    }

    /// What no routing can do without: the labels of both sides, found once for each pair, and the connections. Nobody
    /// looks which pattern matches what.
    Sample inContainers() const
    {
        std::unordered_map<std::string, const Pair*> outs, ins;
        bool routed = false;
        return run(
            [&] {
                routed = true;
                for (const auto& [label, pair] : outs)
                    pair->_out->connect(ins.find(pair->_to)->second->_in.get());
            },
            [&] {
                routed = false;
                for (const auto& [label, pair] : outs)
                    pair->_out->disconnect(ins.find(pair->_to)->second->_in.get());
            },
            [&](const Pair& pair) {
                outs.emplace(pair._from, &pair);
                ins.emplace(pair._to, &pair);
                if (routed)
                    pair._out->connect(pair._in.get());
            },
            [&](const Pair& pair) {
                outs.erase(pair._from);
                ins.erase(pair._to);
                pair._out->disconnect(pair._in.get());
            });
    }

private:
    struct Pair {
        std::string _from, _to;
        std::unique_ptr<Trovio::OutSlot<Value>> _out;
        std::unique_ptr<Trovio::InSlot<Value>> _in;
    };

    /// All slots come, under routes that stand; the routes go, and come back to slots that stand; all slots go.
    template <class AddRoutes, class RemoveRoutes, class AddPair, class RemovePair>
    Sample run(AddRoutes addRoutes, RemoveRoutes removeRoutes, AddPair addPair, RemovePair removePair) const
    {
        const auto eachPair = [&](auto step) {
            for (const Pair& pair : _pairs)
                step(pair);
        };
        addRoutes();
        Steps steps(2 * _pairs.size());
        steps.time([&] { eachPair(addPair); });
        expectJoined(true);
        steps.time(removeRoutes);
        expectJoined(false);
        steps.time(addRoutes);
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
