#pragma once

#include "benchmarks/road/Road.h"
#include "benchmarks/start/Steps.h"
#include "trovio/InSlot.h"
#include "trovio/Namespace.h"
#include "trovio/OutSlot.h"
#include <map>
#include <unordered_map>

namespace Bench {

/// Pairs of slots and the patterns that join them, each pattern as many: "device7/*" with "sink7/*".
class RoutedSlots {
public:
    using Value = Trovio::Vec3<float>;
    static constexpr std::size_t patterns = 100;

    struct Pair {
        std::string _from, _to;
        std::unique_ptr<Trovio::OutSlot<Value>> _out;
        std::unique_ptr<Trovio::InSlot<Value>> _in;
    };

    explicit RoutedSlots(std::size_t slots)
    {
        for (std::size_t i = 0; i < slots / 2; ++i) {
            const std::string place = std::to_string(i % patterns) + "/" + std::to_string(i);
            _pairs.push_back({"device" + place, "sink" + place, std::make_unique<Trovio::OutSlot<Value>>("out"),
                              std::make_unique<Trovio::InSlot<Value>>("in")});
        }
    }

    const std::vector<Pair>& pairs() const { return _pairs; }

    /// All slots come, under routes that stand; the routes go, and come back to slots that stand; all slots go.
    Sample byLibrary() const
    {
        const OpenRoot root;
        Trovio::Namespace ns;
        const auto eachRoute = [&](auto step) {
            for (std::size_t i = 0; i < patterns; ++i)
                step("device" + std::to_string(i) + "/*", "sink" + std::to_string(i) + "/*");
        };
        const auto addRoute = [&](const std::string& from, const std::string& to) { ns.addRoute(from, to); };
        eachRoute(addRoute);
        Steps steps(2 * _pairs.size());
        steps.time([&] {
            for (const Pair& pair : _pairs) {
                ns.addOutSlot(pair._from, pair._out.get());
                ns.addInSlot(pair._to, pair._in.get());
            }
        });
        steps.time([&] { eachRoute([&](const auto& from, const auto& to) { ns.removeRoute(from, to); }); });
        steps.time([&] { eachRoute(addRoute); });
        steps.time([&] {
            for (const Pair& pair : _pairs) {
                ns.removeSlot(pair._from);
                ns.removeSlot(pair._to);
            }
        });
        return steps.sample();
    }

    /// A map of the slots by label, the pairs that are connected, and the connections themselves; who goes with whom is
    /// known beforehand.
    Sample byHand() const
    {
        std::unordered_map<std::string, Trovio::Slot*> slots;
        std::map<std::pair<Trovio::Slot*, Trovio::Slot*>, int> joints;
        const auto connectAll = [&] {
            for (const Pair& pair : _pairs) {
                ++joints[{pair._out.get(), pair._in.get()}];
                pair._out->connect(pair._in.get());
            }
        };
        const auto disconnectAll = [&] {
            for (const Pair& pair : _pairs) {
                joints.erase({pair._out.get(), pair._in.get()});
                pair._out->disconnect(pair._in.get());
            }
        };
        Steps steps(2 * _pairs.size());
        steps.time([&] {
            for (const Pair& pair : _pairs) {
                slots.emplace(pair._from, pair._out.get());
                slots.emplace(pair._to, pair._in.get());
            }
            connectAll();
        });
        steps.time(disconnectAll);
        steps.time(connectAll);
        steps.time([&] {
            disconnectAll();
            for (const Pair& pair : _pairs) {
                slots.erase(pair._from);
                slots.erase(pair._to);
            }
        });
        return steps.sample();
    }

private:
    std::vector<Pair> _pairs;
};

} // namespace Bench
