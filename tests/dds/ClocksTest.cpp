#include "nodes/dds/DdsNewWriters.h"
#include "nodes/dds/SequenceTracker.h"
#include "nodes/dds/clocks/ClockOffset.h"
#include "nodes/dds/net/HostNames.h"
#include "tests/dds/DdsFixture.h"
#include "tests/nodes/FakeLookup.h"
#include "tests/support/Says.h"
#include <cmath>
#include <limits>

namespace Trovio::Nodes {
namespace {

TEST(ClockOffset, BestQuestionCountsUntilItIsOld)
{
    ClockOffset offset;
    EXPECT_FALSE(offset.estimate(0.0));
    // The other clock is 5 s ahead; the answer to the first question is held up for 0.2 s.
    EXPECT_TRUE(offset.note(10.0, 15.1, 15.1, 10.4));
    EXPECT_NEAR(offset.estimate(10.4)->_offset, 4.9, 1e-9);
    EXPECT_NEAR(offset.estimate(10.4)->_bound, 0.2, 1e-9);
    EXPECT_TRUE(offset.note(11.0, 16.01, 16.01, 11.02));
    EXPECT_TRUE(offset.note(12.0, 17.1, 17.1, 12.4));
    EXPECT_NEAR(offset.estimate(12.4)->_offset, 5.0, 1e-9);
    EXPECT_LT(offset.estimate(12.4)->_bound, 0.011);
    // The clocks may have drifted apart by more than the good answer gained.
    EXPECT_TRUE(offset.note(2000.0, 2005.1, 2005.1, 2000.4));
    EXPECT_NEAR(offset.estimate(2000.4)->_offset, 4.9, 1e-9);
}

TEST(ClockOffset, ClockThatWasSetOrIsSilentLeavesNoClaim)
{
    ClockOffset offset;
    EXPECT_TRUE(offset.note(10.0, 15.01, 15.01, 10.02));
    EXPECT_TRUE(offset.note(12.0, 77.1, 77.1, 12.4)); // set ahead by a minute, and told by a worse answer
    EXPECT_NEAR(offset.estimate(12.4)->_offset, 64.9, 1e-9);
    EXPECT_NEAR(offset.estimate(62.4)->_bound, 0.2 + 50 * 2e-4, 1e-9);
    EXPECT_FALSE(offset.estimate(12.4 + ClockOffset::Lifetime + 1.0));
    EXPECT_NEAR(*offset.age(100.0), 87.6, 1e-9);
}

TEST(ClockOffset, ImpossibleAnswersAreNotNoted)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    ClockOffset offset;
    EXPECT_FALSE(offset.note(10.0, 15.0, 15.0, 9.0));  // came before it was asked
    EXPECT_FALSE(offset.note(10.0, 15.0, 16.0, 10.5)); // took longer there than here
    EXPECT_FALSE(offset.note(10.0, 15.0, 14.0, 10.5)); // answered before it came
    EXPECT_FALSE(offset.note(10.0, none, 15.0, 10.5));
    EXPECT_FALSE(offset.note(10.0, 15.0, std::numeric_limits<double>::infinity(), 10.5));
    EXPECT_FALSE(offset.estimate(11.0));
}

TEST(SequenceTracker, TellRepeatedFromMissed)
{
    SequenceTracker numbers;
    SequenceTracker::Guid guid{};
    const auto expectFrom = [&](std::uint64_t end, std::uint64_t writer, std::uint64_t number, bool isNew,
                                std::uint64_t missed) {
        if (!numbers.knows(end))
            numbers.introduce(end, guid);
        const auto verdict = numbers.note({end, writer}, number);
        EXPECT_EQ(verdict._isNew, isNew) << end << ", " << writer << ": " << number;
        EXPECT_EQ(verdict._missed, missed) << end << ", " << writer << ": " << number;
    };
    const auto expect = [&](std::uint64_t writer, std::uint64_t number, bool isNew, std::uint64_t missed) {
        expectFrom(writer, writer, number, isNew, missed);
    };
    expect(1, 5, true, 0); // what came before this reader did is not missed
    expect(1, 5, false, 0);
    expect(2, 1, true, 0);
    expect(1, 8, true, 2);
    expect(1, 7, false, 0);
    expect(3, 0, true, 0);
    expect(3, 0, true, 0);          // does not count
    expectFrom(11, 1, 8, false, 0); // joined again, and is sent the last one anew
    expectFrom(11, 1, 10, true, 1);
    expectFrom(66, 2, 1ULL << 63U, true, 0); // who takes another one's id, and a number that cannot be, ...
    expect(2, 2, true, 0);                   // ... does not shut it out
    expect(2, 1ULL << 32U, true, (1ULL << 32U) - 3);
    expect(2, 1ULL << 34U, true, 0);
    guid = {7};
    expectFrom(77, 7, 20, true, 0);
    expectFrom(78, 7, 15, false, 0); // the same in the network: what was kept comes anew
    expectFrom(78, 7, 20, false, 0);
    expectFrom(78, 7, 21, true, 0);
    guid = {};
    for (std::uint64_t writer = 100; writer < 1123; ++writer) {
        expect(writer, 1, true, 0);
        expectFrom(11, 1, writer, true, writer == 100 ? 89 : 0);
    }
    expectFrom(11, 1, 1122, false, 0); // spoke all the time, and is remembered
    expect(2, 2, true, 0);             // was quiet longest, and is forgotten
}

TEST(HostNames, UnknownHostIsLookedUpAgain)
{
    auto lookup = std::make_unique<FakeLookup>("wand");
    FakeLookup& server = *lookup;
    HostNames hosts({"10.0.0.1", "wand"}, std::move(lookup));
    EXPECT_FALSE(hosts.find());
    server.answer({{}, "who is that?"});
    EXPECT_THROW(hosts.find(), DdsProblem);
    EXPECT_FALSE(hosts.find());
    server.answer({SocketAddress::parse("10.0.0.7", 5), {}});
    EXPECT_EQ(hosts.find(), (std::vector<std::string>{"10.0.0.1", "10.0.0.7"}));
}

/// The system's clock, with the date set wrong.
class WrongDate final : public Clock {
public:
    explicit WrongDate(double ahead) : _ahead(ahead) {}
    void set(double ahead) { _ahead = ahead; }
    double now() const override { return Clock::system().now(); }
    Time wallTime() const override { return Time(Time::getCurrentTime().getSeconds() + _ahead); }
    std::unique_ptr<Alarm> createAlarm() override { return Clock::system().createAlarm(); }

private:
    std::atomic<double> _ahead;
};

TEST(DdsTiming, TakesOutHowFarTheClocksAreApart)
{
    constexpr double ahead = 1000.0, held = 30.0;
    const OpenRoot root;
    WrongDate clock(ahead);
    StandingNode<DdsNode> writer(std::make_unique<DdsNode>(clock), "publish='Wand Float' label=writer" + apart());
    Feed<float> feed("writer/Wand");
    // A value that its source held back for half a minute, by the source's clock.
    feed.push(1.0F, clock.wallTime().getSeconds() - held);
    DdsPeer reader("subscribe='Wand Float' label=reader");
    Probe<Vec3<double>> timing("reader/Wand/timing");
    for (int i = 0; i < 2; ++i) {
        const Vec3<double> told = timing.next().getValue();
        EXPECT_GE(told[2], 0.0);
        EXPECT_LT(told[2], held);
        EXPECT_GE(told[0], held - told[2]);
        EXPECT_LT(told[0], ahead - held); // however long the machine was busy, the wrong date is not in it
        EXPECT_GE(told[1], told[0]);
    }
    // Who comes again, its date set right meanwhile, is compared anew.
    writer.stop();
    clock.set(0.0);
    writer.standAgain();
    constexpr double heldLater = 200.0;
    feed.push(2.0F, clock.wallTime().getSeconds() - heldLater);
    const auto isRight = [](const Vec3<double>& told) {
        return told[0] >= heldLater - told[2] && told[0] < heldLater + ahead / 2;
    };
    while (!isRight(timing.next().getValue())) {
    }
    const auto last = reader->getRemarks();
    ASSERT_EQ(last.size(), 1U);
    EXPECT_TRUE(says(last[0]._text, " from its source to here, "));
    EXPECT_LE(std::abs(last[0]._clock.value()._ahead), last[0]._clock.value()._bound);
}

TEST(DdsTiming, IsLeftOutAtTheEndThatDoesNotWantIt)
{
    const OpenRoot root;
    DdsPeer writer("publish='Wand Float' label=writer timing=no");
    DdsPeer silent("subscribe='Wand Float' label=silent timing=no"), asking("subscribe='Wand Float' label=asking");
    Feed<float> feed("writer/Wand");
    feed.push(1.0F);
    for (const char* label : {"silent/Wand", "asking/Wand"})
        EXPECT_EQ(Probe<float>(label).next().getValue(), 1.0F);
    EXPECT_EQ(silent->inspect()._slots.size() + 1, asking->inspect()._slots.size());
    await([&] {
        const auto remarks = asking->getRemarks();
        return !remarks.empty() && says(remarks[0]._text, "is not known: it has not answered");
    });
}

TEST(DdsNewWriters, GiveTheLastSampleAndWhatWasWrittenWhileTheyWaited)
{
    DdsNewWriters writers;
    constexpr dds_time_t second = 1'000'000'000;
    const auto hold = [&](dds_time_t written, double now) {
        DdsNewWriters::Sample sample{nullptr, {}, now};
        sample._info.publication_handle = 7;
        sample._info.source_timestamp = written;
        writers.hold(std::move(sample), now);
    };
    hold(90 * second, 10.0); // what another reader has not acknowledged yet
    hold(100 * second - second / 25, 10.01);
    hold(100 * second, 10.04);
    EXPECT_TRUE(writers.findDue(10.04).empty());
    EXPECT_EQ(writers.findDue(*writers.nextDue()), std::vector<dds_instance_handle_t>{7});
    const auto samples = writers.release(7, 10.05);
    ASSERT_EQ(samples.size(), 2U);
    EXPECT_EQ(samples[0]._info.source_timestamp, 100 * second - second / 25);
    EXPECT_TRUE(writers.release(7, 10.06).empty());
}

} // namespace
} // namespace Trovio::Nodes
