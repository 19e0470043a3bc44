#include "nodes/generator/Generator.h"
#include "tests/nodes/ManualClock.h"
#include "tests/nodes/NodeFixture.h"
#include "trovio/OutSlot.h"
#include <array>
#include <set>

namespace Trovio::Nodes {
namespace {

Settings settingsOf(const std::string& text)
{
    const auto table = Generator::getEntry()._settings;
    return Settings({table.begin(), table.end()}, text);
}

std::vector<double> course(const std::string& text, std::size_t length, std::size_t component = 0)
{
    const Settings settings = settingsOf(text);
    const Wave wave(settings, 2);
    std::vector<double> values;
    for (std::size_t i = 0; i < length; ++i)
        values.push_back(wave.value({i, static_cast<double>(i) / settings.number("rate")}, component, 0.0));
    return values;
}

TEST(Wave, FollowsItsFormula)
{
    struct Row {
        const char* _settings;
        std::vector<double> _expected;
    };
    for (const Row& row :
         {Row{"rate=4", {0, 1, 0, -1, 0}}, Row{"rate=4 shape=ramp", {-1, -.5, 0, .5, -1}},
          Row{"rate=4 shape=square", {1, 1, -1, -1, 1}},
          Row{"rate=8 shape=steps steps=3", {-1, -1, -1, 0, 0, 0, 1, 1, -1}},
          Row{"rate=4 frequency=0 phase=0.25", {1, 1, 1}}, Row{"rate=4 amplitude=3 offset=10", {10, 13, 10, 7}},
          Row{"rate=4 shape=ramp phase=-0.25", {.5, -1, -.5}},
          Row{"rate=4 amplitude='2 5' offset=' 1  7 ' ", {1, 3, 1, -1}}}) { // of the first component
        const auto values = course(row._settings, row._expected.size());
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_NEAR(values[i], row._expected[i], 1e-12) << row._settings << ", record " << i;
    }
}

TEST(WaveNoise, DependsOnSeedRecordAndComponentOnly)
{
    const auto values = course("shape=noise seed=7", 1000);
    EXPECT_EQ(values, course("shape=noise seed=7 rate=3", 1000));
    EXPECT_NE(values, course("shape=noise seed=8", 1000));
    EXPECT_NE(values, course("shape=noise seed=7", 1000, 1));
    EXPECT_EQ(std::set<double>(values.begin(), values.end()).size(), values.size());
    EXPECT_LT(*std::max_element(values.begin(), values.end()), 1.0);
    EXPECT_GE(*std::min_element(values.begin(), values.end()), -1.0);
}

/// The value of one tick as a slot of type T receives it.
template <class T>
T produced(const std::string& text, const Tick& tick = {})
{
    const auto signal = Signal::create(settingsOf(text + " type=" + TypeName<T>::getName()));
    InSlot<T> receiver("");
    receiver.connect(&signal->getSlot());
    signal->produce(tick, Time(1.0));
    receiver.disconnect(&signal->getSlot());
    return receiver.pop().getValue();
}

TEST(Signal, ValuesOfEveryKind)
{
    EXPECT_EQ((produced<Vec3<float>>("amplitude=0 offset='1 2 3'")), (Vec3<float>(1, 2, 3)));
    EXPECT_EQ(produced<long>("amplitude=0 offset=-2.5"), -3);
    EXPECT_EQ(produced<bool>("shape=square"), true);
    EXPECT_EQ(produced<bool>("shape=square phase=0.5"), false);
    EXPECT_EQ(produced<Time>("amplitude=0 offset=12.5"), Time(12.5));
    EXPECT_EQ(produced<Rotation>("amplitude=0 offset='0 0 0 5'"), Rotation());
    EXPECT_EQ(produced<Rotation>("amplitude=0"), Rotation());
    EXPECT_EQ(produced<Rotation>("amplitude=0 offset='3 0 4 0'"), Rotation(0.6F, 0, 0.8F, 0));
    EXPECT_EQ(*produced<SharedVector<double>>("shape=ramp elements=4"), (std::vector<double>{-1, -.5, 0, .5}));
    EXPECT_TRUE(produced<SharedVector<long>>("elements=0")->empty());
    EXPECT_EQ(produced<SharedVector<Image>>("elements=2 width=3 height=5")->at(1).getDataSize(), 45U);
}

// Red is full at the right, green at the bottom, alpha at the left.
TEST(Signal, PicturesShowTheSameInEveryFormat)
{
    for (const std::string format : {"BGR", "RGB", "BGRA", "RGBA", "ARGB"}) {
        Image picture;
        ASSERT_TRUE(produced<SharedImage>("width=64 height=48 format=" + format)->convertFormat(Image::RGBA, picture));
        const auto pixel = [&picture](std::size_t x, std::size_t y) {
            const auto* const at = picture.getData() + (y * 64 + x) * 4;
            return std::array<int, 3>{at[0], at[1], at[3]};
        };
        const int transparent = format.size() == 3 ? 255 : 0;
        EXPECT_EQ(pixel(63, 0), (std::array<int, 3>{255, 0, transparent})) << format;
        EXPECT_EQ(pixel(0, 47), (std::array<int, 3>{0, 255, 255})) << format;
    }
}

TEST(GeneratorSettings, AreRefusedWithTheirReasonAndTheSlotKept)
{
    expectRefused(std::make_unique<Generator>(Clock::system()), "slot=kept",
                  {{"type=Vec5f", "Vec4f"},
                   {"type=String[]", "type"},
                   {"slot=''", "slot"},
                   {"amplitude='1 2'", "one number"},
                   {"type=Vec3f offset='1 2'", "or 3"},
                   {"phase=x", "phase"},
                   {"offset=inf", "1e+12"},
                   {"offset=' '", "offset"},
                   {"steps=1", "steps"}});
}

class RunningGenerator : public ::testing::Test {
protected:
    /// Stands under the root and feeds a probe, with the record of time 0 already taken.
    void run(const std::string& settings)
    {
        _node.emplace(std::make_unique<Generator>(_clock), settings);
        _probe.emplace("Generator/value");
        _probe->next();
    }
    std::vector<double> take(std::size_t count)
    {
        std::vector<double> values;
        for (std::size_t i = 0; i < count; ++i)
            values.push_back(_probe->next().getValue());
        return values;
    }

    OpenRoot _root;
    ManualClock _clock;
    std::optional<StandingNode<Generator>> _node;
    std::optional<Probe<double>> _probe;
};

TEST_F(RunningGenerator, PushesEachRecordOnceWithTheTimeItWasDue)
{
    run("type=Double rate=4 shape=ramp");
    _clock.advance(0.25);
    EXPECT_EQ(take(1), std::vector{-.5});
    _clock.advance(0.6);
    const auto second = _probe->next();
    EXPECT_EQ(second.getValue(), 0.0);
    EXPECT_NEAR(second.getTimeStamp().getSeconds(), ManualClock::Epoch + 0.5, 1e-6);
    EXPECT_EQ(take(1), std::vector{.5});
    _node->stop();
    EXPECT_EQ(_node->count("records"), 4U);
    EXPECT_EQ(_node->count("skipped"), 0U);
}

TEST_F(RunningGenerator, LeavesOutWhatIsLongOverdue)
{
    run("type=Double rate=4 frequency=0 amplitude=0");
    _clock.advance(100.25); // records 1 to 401 are due, the last 2 of them hardly late
    take(1);
    _node->stop();
    EXPECT_EQ(_node->count("records") + _node->count("skipped"), 402U);
    EXPECT_GE(_node->count("skipped"), 396U);
}

TEST_F(RunningGenerator, EndsAfterItsCountAndStartsOverWhenItStandsAgain)
{
    run("type=Double rate=4 count=3 shape=ramp");
    _clock.advance(1.0);
    EXPECT_EQ(take(2), (std::vector{-.5, 0.0}));
    _clock.advance(1.0);
    _node->stop();
    EXPECT_EQ(_node->count("records"), 3U);
    _node->standAgain();
    EXPECT_EQ(take(2), (std::vector{0.0, -1.0})); // the last one again, as to every new reader
}

} // namespace
} // namespace Trovio::Nodes
