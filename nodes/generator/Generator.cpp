#include "nodes/generator/Generator.h"

#include "nodes/generator/TestPattern.h"
#include "nodes/shared/NumberList.h"

namespace Trovio::Nodes {

namespace {

constexpr double maxLag = 1.0; // seconds

const Setting generatorSettings[] = {
    Setting::text("type", "Float", "type of the values", "any numeric slot type, Image, and each with []"),
    Setting::text("slot", "value", "label of the out-slot", "1 to 1024 bytes"),
    Setting::number("rate", "60", 0.001, 100000, "records a second"),
    Setting::integer("count", "0", 0, 1e15, "records until it ends; 0: endless"),
    Setting::choice("shape", "sine", "sine|ramp|square|steps|noise", "course of the values"),
    Setting::number("frequency", "1", 0, 1e6, "periods a second"),
    Setting::text("amplitude", "1", "half the height of the course", numberList),
    Setting::text("offset", "0", "middle of the course", numberList),
    Setting::text("phase", "0", "start of the course in periods", numberList),
    Setting::integer("steps", "8", 2, 1000000, "levels of the shape steps"),
    Setting::integer("seed", "1", 0, 1e15, "start of the shape noise; the same seed gives the same values"),
    Setting::integer("elements", "4", 0, 1000000, "length of multiple values"),
    Setting::integer("width", "64", 1, 4096, "pixels of a test picture from left to right"),
    Setting::integer("height", "48", 1, 4096, "pixels of a test picture from top to bottom"),
    Setting::choice("format", "RGB", TestPattern::FormatChoices, "pixel format of a test picture"),
};

} // namespace

const NodeTypeEntry& Generator::getEntry()
{
    static constexpr auto create = []() -> std::unique_ptr<Node> {
        return std::make_unique<Generator>(Clock::system());
    };
    static const NodeTypeEntry entry{"Generator", "made-up values at a steady rate, for tests and demonstrations",
                                     generatorSettings, create};
    return entry;
}

Generator::Generator(Clock& clock)
    : WorkerNode(clock),
      _records(addCounter("records")),
      _skipped(addCounter("skipped")),
      _shortage(clock, addCounter("without memory"), "Generator")
{
}

Generator::~Generator() = default;

void Generator::configure(const Settings& settings)
{
    const std::string& label = settings.text("slot");
    if (label.empty() || label.size() > MaxLabelLength)
        throw settings.refusal("slot", "a text of 1 to " + std::to_string(MaxLabelLength) + " bytes");
    auto signal = Signal::create(settings);
    removeSlots();
    _signal = std::move(signal);
    addSlot(_signal->getSlot());
    _rate = settings.number("rate");
    _count = static_cast<std::uint64_t>(settings.integer("count"));
}

void Generator::start()
{
    _next = 0;
    _startTime = _clock.now();
    WorkerNode::start();
}

void Generator::run()
{
    while (_worker.wait(isDone() ? std::nullopt : std::optional(dueTime())))
        produceDue();
}

void Generator::produceDue()
{
    const double now = _clock.now();
    const Time wallTime = _clock.wallTime();
    if (now - dueTime() > maxLag) {
        const auto late = static_cast<std::uint64_t>((now - dueTime()) * _rate);
        _skipped.add(late);
        _next += late;
    }
    while (!isDone() && dueTime() <= now && !_worker.isStopping()) {
        const Tick tick{_next, static_cast<double>(_next) / _rate};
        const Time stamp(wallTime.getSeconds() - (now - dueTime()));
        if (_shortage.survives([&] { _signal->produce(tick, stamp); }))
            _records.add();
        ++_next;
    }
}

} // namespace Trovio::Nodes
