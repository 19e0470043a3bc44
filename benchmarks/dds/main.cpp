#include "benchmarks/dds/DirectEnds.h"
#include "benchmarks/dds/FarProcess.h"
#include "benchmarks/dds/NodeEnds.h"
#include "benchmarks/harness/Workload.h"
#include "trovio/Root.h"
#include <array>
#include <cstring>
#include <thread>
#include <unistd.h>

// Two processes on one machine: a value goes to the other one, and an answer comes back.
namespace Bench {

namespace {

struct Contender {
    const char* _name;
    std::unique_ptr<NearEnd> (*_near)(const Meeting& meeting);
    std::unique_ptr<FarEnd> (*_far)(const Meeting& meeting);
};

constexpr std::array contenders{
    Contender{"Cyclone DDS, listener", [](const Meeting& meeting) { return makeNearDirect(meeting, Taking::Listener); },
              [](const Meeting& meeting) { return makeFarDirect(meeting, Taking::Listener); }},
    Contender{"Cyclone DDS, waitset", [](const Meeting& meeting) { return makeNearDirect(meeting, Taking::Waitset); },
              [](const Meeting& meeting) { return makeFarDirect(meeting, Taking::Waitset); }},
    Contender{"library", makeNearNode, makeFarNode},
};
constexpr unsigned firstDomain = 190; // one for each contender
constexpr int mostGreetings = 200;

/// One contender's two processes.
class Pair {
public:
    Pair(std::size_t contender, Load load)
        : _far({"benchDds", "--far", std::to_string(contender), load == Load::Vector ? "vector" : "array",
                std::to_string(::getpid())}),
          _near(contenders[contender]._near(meeting(contender, load, ::getpid())))
    {
        for (int i = 0; !_near->poll(); ++i) {
            if (i == mostGreetings)
                throw std::runtime_error("the other process does not answer");
            _near->send();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        while (_near->poll()) {
        }
    }

    static Meeting meeting(std::size_t contender, Load load, int process)
    {
        return {load, firstDomain + static_cast<unsigned>(contender), "bench" + std::to_string(process)};
    }
    NearEnd& near() { return *_near; }

private:
    FarProcess _far;
    std::unique_ptr<NearEnd> _near; // goes first
};

Sample measureTrips(NearEnd& near)
{
    constexpr std::size_t trips = 2'000;
    std::vector<double> times(trips);
    const auto before = allocations();
    for (double& time : times) {
        const auto start = Clock::now();
        near.send();
        near.take();
        time = nanosecondsSince(start);
    }
    return {{quantile(times, 0.5), quantile(times, 0.99)}, static_cast<double>(allocations() - before) / trips};
}

/// As many arrays are under way as keep both processes busy.
Sample measureArrays(NearEnd& near)
{
    constexpr std::size_t count = 200, window = 4;
    const auto before = allocations();
    const auto start = Clock::now();
    for (std::size_t i = 0; i < count + window; ++i) {
        if (i >= window)
            near.take();
        if (i < count)
            near.send();
    }
    const double each = nanosecondsSince(start) / count;
    return {{each, 1e9 / each}, static_cast<double>(allocations() - before) / count};
}

/// New processes each time: how fast a pair is depends on where its memory happens to lie.
void addAll(Workload& workload, Load load, Sample (*measure)(NearEnd&))
{
    for (std::size_t i = 0; i < contenders.size(); ++i)
        workload.add(contenders[i]._name, [i, load, measure] {
            Pair pair(i, load);
            measure(pair.near()); // warms up
            return measure(pair.near());
        });
}

void trip(Workload& workload)
{
    workload.setMetrics({{"", "us", 1e-3}, {"p99", "us", 1e-3}});
    addAll(workload, Load::Vector, measureTrips);
    for (const char* direct : {contenders[0]._name, contenders[1]._name})
        workload.limitEach("library", direct, 1.25);
}

void megabytes(Workload& workload)
{
    workload.setMetrics({{"", "us", 1e-3}, {"rate", "MB/s"}});
    addAll(workload, Load::Array, measureArrays);
    for (const char* direct : {contenders[0]._name, contenders[1]._name})
        workload.limit("library", direct, 1.0 / 0.8);
}

int runFar(char** arguments)
{
    const auto contender = static_cast<std::size_t>(std::atoi(arguments[0]));
    const Load load = std::strcmp(arguments[1], "array") == 0 ? Load::Array : Load::Vector;
    const auto end = contenders.at(contender)._far(Pair::meeting(contender, load, std::atoi(arguments[2])));
    FarProcess::waitForEnd();
    return EXIT_SUCCESS;
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    Trovio::Root::init();
    const int result =
        argc == 5 && std::strcmp(argv[1], "--far") == 0
            ? Bench::runFar(argv + 2)
            : Bench::runWorkloads({{"dds.trip", Bench::trip}, {"dds.megabyte", Bench::megabytes}}, argc, argv);
    Trovio::Root::shutdown();
    return result;
}
