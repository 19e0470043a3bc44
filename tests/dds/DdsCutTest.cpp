#include "monitor/answer/Answers.h"
#include "tests/dds/DdsFixture.h"
#include "tests/dds/TwoMachines.h"
#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace Trovio::Nodes {
namespace {

/// How samples travel.
struct Traffic {
    const char* _settings = "";
    int _rate = 100;                    // samples a second
    const char* _lease = "3";           // seconds, the default
    std::vector<std::string> _before{}; // what starts the program that sends

    double lease() const { return std::atof(_lease); }
};

/// Takes whole numbers that count upwards, and looks that none comes twice or too early.
class Counted {
public:
    Data<long> next()
    {
        const Data<long> record = _probe.next();
        EXPECT_GT(record.getValue(), _last);
        _last = record.getValue();
        return record;
    }
    void takeUntil(long value)
    {
        while (_last < value)
            next();
    }
    void takeUntil(const Time& stamp)
    {
        while (next().getTimeStamp().getSeconds() < stamp.getSeconds()) {
        }
    }
    long getLast() const { return _last; }

private:
    Probe<long> _probe{"reader/Count", 65536};
    long _last = -1;
};

/// A host on the other machine counts; a node in this process subscribes to it.
class DdsTwoMachines : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!_machines.getHindrance().empty())
            GTEST_SKIP() << "two machines cannot be made here: " << _machines.getHindrance();
        _root.emplace();
    }
    void TearDown() override
    {
        _count.reset();
        _reader.reset();
        _host.reset();
        _root.reset();
        std::filesystem::remove(_scene);
    }

    /// Starts counting from 0 to last at that rate, on the other machine, and listening to it.
    void start(long last, const Traffic& traffic = {})
    {
        const std::string all = apart(traffic._lease) + " interface=cable0" + traffic._settings;
        // One rise of a ramp, stretched so that it counts.
        const std::string counting =
            "type=Long shape=ramp amplitude=500000 offset=500000 frequency=" + std::to_string(traffic._rate / 1e6) +
            " rate=" + std::to_string(traffic._rate) + " count=" + std::to_string(last + 1);
        std::ofstream(_scene) << "[[handler]]\nkind = 'Trovio'\nname = 'count'\nnodes = [ [\"Generator\", \""
                              << counting << "\"], [\"DDS\", \"publish='Count Long' " << all << "\"] ]\n"
                              << "[[route]]\nfrom = 'Context/Generator/value'\nto = 'Context/DDS/Count'\n";
        _reader.emplace("subscribe='Count Long' label=reader interface=cable0" + std::string(traffic._settings),
                        traffic._lease);
        _count.emplace();
        std::vector<std::string> arguments = _machines.there();
        arguments.insert(arguments.end(), traffic._before.begin(), traffic._before.end());
        arguments.insert(arguments.end(), {HOST_PROGRAM, "run", _scene, "--seconds", "100000"});
        _host.emplace("nsenter", arguments);
    }

    TwoMachines _machines;
    const std::filesystem::path _scene =
        std::filesystem::path(::testing::TempDir()) / ("count-" + std::to_string(::getpid()) + ".toml");
    std::optional<OpenRoot> _root;
    std::optional<DdsPeer> _reader;
    std::optional<Counted> _count;
    std::optional<HostProcess> _host;
};

struct Cut {
    const char* _name;
    double _seconds;
    Line::Way _way;
    int _times;
    Traffic _traffic;
};
class DdsCut : public DdsTwoMachines, public ::testing::WithParamInterface<Cut> {};

TEST_P(DdsCut, HealsByItselfWithoutRepeating)
{
    const Cut& row = GetParam();
    const long last = static_cast<long>(row._traffic._rate * (3.0 + row._times * (row._seconds + 6.0)));
    start(last, row._traffic);
    _count->takeUntil(10);
    for (int i = 0; i < row._times; ++i) {
        _machines.line().cut(row._way);
        // A line cannot be driven by hand: what runs over it has clocks of its own.
        std::this_thread::sleep_for(std::chrono::duration<double>(row._seconds));
        const double leases = row._seconds / row._traffic.lease();
        if (leases < 1.0 || leases > 3.0) { // between, both may be
            EXPECT_EQ(_reader->state()._degraded, leases > 3.0) << _reader->state()._reason;
        }
        _machines.line().mend();
        const auto mended = std::chrono::steady_clock::now();
        _count->takeUntil(Time::getCurrentTime());
        const std::chrono::duration<double> delay = std::chrono::steady_clock::now() - mended;
        std::printf("%s, cut %d: first new sample %.2f s after mending\n", row._name, i + 1, delay.count());
        _count->takeUntil(_count->getLast() + row._traffic._rate);
    }
    _count->takeUntil(last);
    EXPECT_EQ(_reader->count("in refused"), 0U);
    _reader->awaitRunning();
}

#ifdef DDS_LONG_CUTS
INSTANTIATE_TEST_SUITE_P(
    Long, DdsCut,
    ::testing::Values(Cut{"ShortBothWays", 0.5, Line::Way::Both, 5, {}},
                      Cut{"LongBothWays", 15.0, Line::Way::Both, 5, {}},
                      Cut{"ShortFromPublisher", 0.5, Line::Way::FromSecond, 5, {}},
                      Cut{"LongFromPublisher", 15.0, Line::Way::FromSecond, 5, {}},
                      Cut{"ShortFromSubscriber", 0.5, Line::Way::FromFirst, 5, {}},
                      Cut{"LongFromSubscriber", 15.0, Line::Way::FromFirst, 5, {}},
                      Cut{"LongWithoutMulticast", 15.0, Line::Way::Both, 5, {" host='10.77.0.1 10.77.0.2'"}}),
    [](const auto& row) { return std::string(row.param._name); });

#else
// After a cut only from the publisher, which goes on knowing its subscriber, that is sent anew what is still kept.
INSTANTIATE_TEST_SUITE_P(Short, DdsCut,
                         ::testing::Values(Cut{"BothWays", 0.5, Line::Way::Both, 1, {}},
                                           Cut{"FromPublisher", 1.5, Line::Way::FromSecond, 1, {"", 15, "1"}}),
                         [](const auto& row) { return std::string(row.param._name); });

TEST_F(DdsTwoMachines, PublisherThatDoesNotHearUsIsNamed)
{
    start(100000);
    _count->takeUntil(10);
    _machines.line().cut(Line::Way::FromFirst);
    _reader->awaitReason("publisher of Count: liveliness lease expired");
    _machines.line().mend();
    _reader->awaitRunning();
    _count->takeUntil(Time::getCurrentTime());
}

TEST_F(DdsTwoMachines, InterfaceThatComesLaterOrChangesItsAddressIsOpenedAgain)
{
    _machines.run("ip link set cable0 down && ip address flush dev cable0");
    start(100000);
    _reader->awaitReason("interface cable0");
    for (const std::string address : {"10.77.0.3", "10.77.0.4"}) {
        _machines.run("ip address flush dev cable0 && ip address add " + address +
                      "/24 dev cable0 && ip link set cable0 up");
        _count->takeUntil(Time::getCurrentTime());
        _reader->awaitRunning();
    }
}

TEST_F(DdsTwoMachines, LastValueOfAPublisherWithoutAddressArrivesOnceItHasOne)
{
    constexpr long last = 200;
    start(last);
    _count->takeUntil(10);
    _machines.line().cut(Line::Way::Both);
    std::this_thread::sleep_for(std::chrono::seconds(1 + last / Traffic()._rate)); // all is written by then
    _machines.runThere("ip address flush dev cable0");
    std::this_thread::sleep_for(std::chrono::seconds(3)); // the node looks every two
    _machines.runThere("ip address add dev cable0 10.77.0.5/24");
    _machines.line().mend();
    _count->takeUntil(last);
}

#ifdef CLOCK_AHEAD
TEST_F(DdsTwoMachines, AgesAreThoseOfTheLineWhateverTheOtherClockSays)
{
    constexpr double ahead = 5, late = 0.020; // seconds
    _machines.line().delay(std::chrono::milliseconds(20));
    start(100000, {"", 100, "3", {"env", "LD_PRELOAD=" CLOCK_AHEAD}});
    _count->takeUntil(10);
    const Monitor::TapSet taps;
    const Monitor::Answers answers({}, taps);
    const Monitor::Question question{
        "GET", "/delay", {{"from", "reader/Count"}, {"to", "probe of reader/Count"}, {"seconds", "0.5"}}, {}, {},
        false, {}};
    nlohmann::json delay, hop;
    await([&] { // until enough questions about the clock are answered
        delay = nlohmann::json::parse(answers.ask(question)._body);
        hop = delay.at("hops").at(0);
        return delay.at("clock").is_object() && hop.at("bound").is_number();
    });
    const double bound = hop.at("bound");
    std::printf("%s\n", delay.dump().c_str());
    EXPECT_NEAR(hop.at("least").get<double>(), late, bound) << delay;
    EXPECT_NEAR(delay.at("clock").at("ahead").get<double>(), ahead, bound) << delay;
    EXPECT_LT(bound, ahead / 10);
}
#endif
#endif

} // namespace
} // namespace Trovio::Nodes
