#include "benchmarks/floor/FloorFan.h"
#include "benchmarks/peers/DdsFan.h"
#include "benchmarks/peers/SignalFan.h"
#include "benchmarks/peers/ZmqFan.h"
#include "benchmarks/slots/LibraryFan.h"
#include "benchmarks/slots/Slots.h"

namespace Bench {

namespace {

/// A writer and a reader for each sensor. In a frame every hundredth writer writes, then every reader is asked.
template <Fan F>
class Frame {
public:
    explicit Frame(std::size_t sensors)
    {
        for (std::size_t i = 0; i < sensors; ++i)
            _fans.push_back(std::make_unique<F>(1));
    }

    void operator()()
    {
        for (std::size_t i = _number++ % share; i < _fans.size(); i += share)
            _fans[i]->push();
        for (const auto& fan : _fans)
            fan->poll(0);
    }

private:
    static constexpr std::size_t share = 100;
    std::vector<std::unique_ptr<F>> _fans;
    std::size_t _number = 0;
};

template <Fan F>
void addFrame(Workload& workload, const char* name, std::size_t sensors, std::size_t perBatch)
{
    workload.add(name, [sensors, perBatch, frame = std::make_shared<Frame<F>>(sensors)] {
        Sample sample = sampleBatches(perBatch, [&] { (*frame)(); });
        sample._figures[0] *= 10'000.0 / static_cast<double>(sensors);
        return sample;
    });
}

} // namespace

/// ZeroMQ has a tenth of the sensors: each socket takes a file, and a process may not open that many. It comes last,
/// for Cyclone DDS starts only while there are few. One participant of that takes 5,461 topics and no more.
void frameOfSlots(Workload& workload)
{
    workload.setMetrics({{"", "us", 1e-3}});
    addFrame<FloorFan>(workload, "floor", 10'000, 4);
    addFrame<LibraryFan>(workload, "library", 10'000, 4);
    addFrame<SignalFan>(workload, "Boost.Signals2", 10'000, 4);
    addFrame<DdsFan>(workload, "Cyclone DDS (5,000 x 2)", 5'000, 1);
    addFrame<ZmqFan>(workload, "ZeroMQ inproc (1,000 x 10)", 1'000, 1);
    workload.limit("library", "floor", 1.15);
    workload.forbidAllocations("library");
    for (const char* middleware : {"ZeroMQ inproc (1,000 x 10)", "Cyclone DDS (5,000 x 2)"})
        workload.limit("library", middleware, 0.1);
}

} // namespace Bench
