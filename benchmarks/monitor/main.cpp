#include "benchmarks/harness/Workload.h"
#include "benchmarks/road/Road.h"
#include "benchmarks/slots/LibraryFan.h"
#include "monitor/answer/Answers.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Root.h"

namespace Bench {

namespace {

using Monitor::TapSet;

/// An out-slot in the tree with one reader, and perhaps somebody who looks at it.
class WatchedSlot {
public:
    explicit WatchedSlot(bool watched)
    {
        auto scene = std::make_unique<Trovio::Namespace>();
        scene->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        scene->addOutSlot("out", &_out);
        scene->addInSlot("in", &_in);
        scene->addRoute("out", "in");
        _label = Trovio::Root::get().addNamespace("scene", std::move(scene));
        if (watched)
            _taps.add(_label + "/out");
    }
    ~WatchedSlot() { Trovio::Root::get().removeNamespace(_label); }
    WatchedSlot(const WatchedSlot&) = delete;
    WatchedSlot& operator=(const WatchedSlot&) = delete;

    void push() { _out.push(_record); }
    void drain()
    {
        _taps.drain([](const std::string&, const Monitor::SlotCodec&, Monitor::TapRecord&& record) { keep(record); });
    }

private:
    const OpenRoot _root;
    const LibraryRecord _record = someLibraryRecord();
    Trovio::OutSlot<LibraryValue> _out{"out"};
    Trovio::InSlot<LibraryValue> _in{"in"};
    TapSet _taps;
    std::string _label;
};

enum class Drain { Never, Between, Timed };

Sample pushThousands(bool watched, Drain drain)
{
    constexpr std::size_t perBatch = 1'000; // which a ring holds
    WatchedSlot slot(watched);
    std::size_t pushed = 0;
    return sampleBatches(
        perBatch,
        [&] {
            slot.push();
            if (drain == Drain::Timed && ++pushed % perBatch == 0)
                slot.drain();
        },
        [&] {
            if (drain == Drain::Between)
                slot.drain();
        });
}

/// What looking at a slot costs who pushes into it, and with what the server's thread does for each record.
void push(Workload& workload)
{
    workload.add("unwatched", [] { return pushThousands(false, Drain::Never); });
    workload.add("watched", [] { return pushThousands(true, Drain::Between); });
    workload.add("watched, ring full", [] { return pushThousands(true, Drain::Never); });
    workload.add("watched, and drained", [] { return pushThousands(true, Drain::Timed); });
    workload.forbidAllocations("watched");
}

/// A tree with many slots, half of them out-slots, each joined with an in-slot.
class ManySlots {
public:
    explicit ManySlots(std::size_t count)
    {
        auto scene = std::make_unique<Trovio::Namespace>();
        scene->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        for (std::size_t i = 0; i < count / 2; ++i) {
            const std::string number = std::to_string(i);
            scene->addOutSlot("tracker/" + number, _outs.emplace_back(std::make_unique<Out>("out")).get());
            scene->addInSlot("wand/" + number, _ins.emplace_back(std::make_unique<In>("in")).get());
            _outs.back()->push(someLibraryRecord());
        }
        scene->addRoute("tracker/*", "wand/*");
        Trovio::Root::get().addNamespace("scene", std::move(scene));
    }
    ~ManySlots() { Trovio::Root::get().removeNamespace("scene"); }
    ManySlots(const ManySlots&) = delete;
    ManySlots& operator=(const ManySlots&) = delete;

private:
    using Out = Trovio::OutSlot<LibraryValue>;
    using In = Trovio::InSlot<LibraryValue>;
    const OpenRoot _root;
    std::vector<std::unique_ptr<Out>> _outs;
    std::vector<std::unique_ptr<In>> _ins;
};

/// A question, and how long the tree is locked for it.
void metrics(Workload& workload)
{
    workload.setMetrics({{"", "ms", 1e-6}, {"tree locked", "ms", 1e-6}});
    workload.add("10,000 slots", [] {
        const ManySlots slots(10'000);
        const TapSet taps;
        const Monitor::Answers answers({}, taps);
        const auto lock = Clock::now();
        keep(Trovio::Root::get().inspect());
        const double locked = nanosecondsSince(lock);
        const auto start = Clock::now();
        keep(answers.ask({"GET", "/metrics", {}, {}, {}, false, {}}));
        return Sample{{nanosecondsSince(start), locked}, {}};
    });
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads({{"monitor.push", Bench::push}, {"monitor.metrics", Bench::metrics}}, argc, argv);
}
