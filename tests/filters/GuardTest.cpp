#include "nodes/guard/Guard.h"
#include "tests/filters/RelayBench.h"
#include "tests/support/Says.h"
#include "trovio/SlotTypes.h"

namespace Trovio::Nodes {
namespace {

/// A guard whose source falls silent when the test moves the clock.
template <class T>
class GuardBench : public RelayBench<Guard, T> {
public:
    using RelayBench<Guard, T>::RelayBench;

    bool nextAlive() { return _alive.next().getValue(); }
    Time nextAliveTime() { return _alive.next().getTimeStamp(); }
    bool isDegraded() { return this->node()->getState()._degraded; }

private:
    Probe<bool> _alive{"relay/alive"};
};

template <class T>
void loseSource(GuardBench<T>& bench)
{
    bench.clock().advance(0.5);
    EXPECT_FALSE(bench.nextAlive());
}

TEST(Guard, DeclaresASilenceOfTheSetTimeOnceAndTheReturn)
{
    GuardBench<float> bench("after=0.5");
    EXPECT_EQ(bench.pass(1.0F, 42.0), 1.0F);
    EXPECT_TRUE(bench.nextAlive());
    bench.clock().advance(0.4);
    EXPECT_EQ(bench.pass(2.0F), 2.0F);
    bench.clock().advance(0.4);
    EXPECT_EQ(bench.pass(3.0F), 3.0F);
    bench.clock().advance(0.5);
    EXPECT_EQ(bench.nextAliveTime(), Time(ManualClock::Epoch + 1.3));
    bench.clock().advance(100);
    EXPECT_EQ(bench.pass(4.0F), 4.0F);
    EXPECT_TRUE(bench.nextAlive());
    bench.node().stop();
    EXPECT_TRUE(bench.output().empty());
    EXPECT_EQ(bench.node().count("received"), 4U);
    EXPECT_EQ(bench.node().count("sent"), 4U);
    EXPECT_EQ(bench.node().count("losses"), 1U);
    EXPECT_EQ(bench.node().count("substituted"), 0U);
    EXPECT_FALSE(bench.isDegraded());
}

TEST(Guard, KeepsTheSourcesStampsAndDoesNotMeasureByThem)
{
    GuardBench<float> bench("");
    for (const double stamp : {-5.0, 1e12, 0.0}) {
        bench.clock().advance(0.4);
        bench.send(1.0F, stamp);
        EXPECT_EQ(bench.next().getTimeStamp(), Time(stamp));
    }
    bench.node().stop();
    EXPECT_EQ(bench.node().count("losses"), 0U);
}

TEST(Guard, ASourceThatNeverSpokeIsLostToo)
{
    GuardBench<long> bench("then=value value=-7");
    loseSource(bench);
    const auto record = bench.next();
    EXPECT_EQ(record.getValue(), -7);
    EXPECT_EQ(record.getTimeStamp(), Time(ManualClock::Epoch + 0.5));
    bench.node().stop();
    EXPECT_TRUE(bench.isDegraded());
    EXPECT_TRUE(says(bench.node()->getState()._reason, "no record came for 0.5 s"));
    EXPECT_EQ(bench.node().count("substituted"), 1U);
}

TEST(Guard, StartsOverWhenItStandsAgain)
{
    GuardBench<long> bench("");
    loseSource(bench);
    bench.node().stop();
    bench.clock().advance(100);
    bench.node().standAgain();
    EXPECT_FALSE(bench.nextAlive()); // the last one again, as to every new reader
    EXPECT_FALSE(bench.isDegraded());
    loseSource(bench);
}

template <class T>
T substitute(const std::string& settings)
{
    GuardBench<T> bench(settings);
    loseSource(bench);
    return bench.next().getValue();
}

TEST(Guard, SendsTheDefaultOfEveryType)
{
    int types = 0;
    forEachSlotType([&]<class T>(TypeTag<T>) {
        const T value = substitute<T>("then=zero");
        if constexpr (requires { value->size(); })
            EXPECT_TRUE(value && value->empty()) << TypeName<T>::getName();
        else if constexpr (requires { value->empty(); })
            EXPECT_TRUE(value && value->empty()) << TypeName<T>::getName();
        else
            EXPECT_EQ(value, T()) << TypeName<T>::getName();
        ++types;
    });
    EXPECT_EQ(types, 40);
}

TEST(Guard, SendsTheValueOfItsSettings)
{
    EXPECT_EQ(substitute<bool>("then=value value=true"), true);
    EXPECT_EQ(substitute<Time>("then=value value=12.5"), Time(12.5));
    EXPECT_EQ(substitute<std::string>("then=value value='no signal'"), "no signal");
    EXPECT_EQ(substitute<std::string>("then=value"), "");
    EXPECT_EQ(substitute<long>("then=value value=9007199254740993"), 9007199254740993L);
    EXPECT_EQ((substitute<Vec3<float>>("then=value value=' 0 1.6  -2'")), (Vec3<float>(0, 1.6F, -2)));
    EXPECT_EQ(substitute<Rotation>("then=value value='0 3 0 4'"), Rotation(0, 0.6F, 0, 0.8F));
    EXPECT_EQ(*substitute<SharedVector<Vec2<double>>>("then=value value='1 2 3 4'"),
              (std::vector<Vec2<double>>{{1, 2}, {3, 4}}));
    EXPECT_EQ(*substitute<SharedVector<bool>>("then=value value='true false'"), (std::vector<bool>{true, false}));
    EXPECT_EQ(*substitute<SharedVector<std::string>>("then=value value=\"one\\ntwo words\""),
              (std::vector<std::string>{"one", "two words"}));
    EXPECT_TRUE(substitute<SharedVector<double>>("then=value")->empty());
}

TEST(GuardRefuses, AndNamesWhatIsAllowed)
{
    ManualClock clock;
    expectRefused(std::make_unique<Guard>(clock), "",
                  {{"after=0", "number from 0.001 to 86400"},
                   {"then=panic", "one of hold, zero, value"},
                   {"value=1", "only with then=value"},
                   {"type=Vec5f", "Vec4f"},
                   {"then=value", "1 finite numbers"},
                   {"then=value value='1 2'", "'value': value '1 2'"},
                   {"type=Vec3f then=value value='1 2'", "3 finite numbers"},
                   {"type=Vec2f[] then=value value='1 2 3'", "for each element"},
                   {"then=value value=inf", "finite"},
                   {"type=Long then=value value=1e3", "fit the type"},
                   {"type=Bool then=value value=1", "true or false"},
                   {"type=Rotation then=value value='0 0 0 0'", "not all of them 0"},
                   {"type=Image then=value", "hold or zero"}});
}

} // namespace
} // namespace Trovio::Nodes
