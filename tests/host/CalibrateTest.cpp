#include "host/calibrate/Verdict.h"
#include "tests/support/Says.h"

#include <random>

namespace Host {
namespace {

/// Where the room has a point that the device sees: turned by 90 degrees about z, doubled, moved.
Point placeOf(const Point& seen)
{
    return {-2 * seen[1] + 1, 2 * seen[0] + 2, 2 * seen[2] + 3};
}

std::vector<Guide::Measured> measuredAt(const std::vector<Point>& seen)
{
    std::vector<Guide::Measured> all;
    for (const Point& point : seen)
        all.push_back({{"p" + std::to_string(all.size() + 1), placeOf(point)}, point});
    return all;
}

const std::vector<Point> corners{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

TEST(Calibration, FindsTheRoomAndWritesItAsAFilter)
{
    const CalibrationVerdict verdict = judgeCalibration(measuredAt(corners), 0.001, false);
    EXPECT_EQ(verdict._align, "Align rotation='0 0 0.707106781 0.707106781' translation='1 2 3' scale=2");
    EXPECT_EQ(verdict._refusal + verdict._note, "");
    EXPECT_TRUE(says(verdict._table, "p4                  1 2 5                           0.0000\n"));
}

TEST(Calibration, ResidualsAreAsLargeAsTheNoise)
{
    constexpr double noise = 0.01; // of each coordinate, in the room's unit
    constexpr int count = 400;
    std::mt19937 random(7); // NOLINT: the same each time
    std::normal_distribution<double> error(0, noise);
    std::uniform_real_distribution<double> where(-1, 1);
    std::vector<Point> seen, places;
    for (int i = 0; i < count; ++i) {
        seen.push_back({where(random), where(random), where(random)});
        places.push_back(placeOf(seen.back()));
        for (double& coordinate : places.back())
            coordinate += error(random);
    }
    const RoomFit fit = fitRoom(seen, places, false);
    // Seven numbers were fitted to three times as many as there are points.
    EXPECT_NEAR(fit.rms(), noise * std::sqrt((3.0 * count - 7) / count), 0.05 * noise);
    EXPECT_NEAR(fit._scale, 2, noise);
    EXPECT_NEAR(fitRoom(seen, places, true)._scale, 1, 1e-12);
    EXPECT_NEAR(fit._translation[2], 3, noise);
}

TEST(Calibration, RefusesWhatTellsNoRoomAndNamesThePoint)
{
    // Of four points alone, another one than the wrong one may be farthest off.
    auto off = measuredAt({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
    off[2]._value[0] += 0.4;
    EXPECT_TRUE(says(judgeCalibration(off, 0.05, false)._refusal, "'p3' is off by 0."));
    EXPECT_EQ(judgeCalibration(off, 0.05, false)._align, "");
    EXPECT_NE(judgeCalibration(off, 5, false)._align, "");

    auto mirror = measuredAt(corners);
    for (auto& one : mirror)
        one._value[2] *= -1;
    EXPECT_TRUE(says(judgeCalibration(mirror, 0.05, false)._refusal, "put \"Axes axes=xyZ\" on the route"));

    const auto flat = judgeCalibration(measuredAt({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}), 0.05, false);
    EXPECT_TRUE(says(flat._note, "all points lie in a plane"));
    EXPECT_NE(flat._align, "");

    auto stuck = measuredAt(corners);
    for (auto& one : stuck)
        one._value = {1, 1, 1};
    EXPECT_TRUE(
        says(judgeCalibration(stuck, 5, false)._refusal, "the values that were measured: they are all at one place"));
    EXPECT_TRUE(says(judgeCalibration({}, 5, false)._refusal, "there are 0"));

    std::vector<Guide::Measured> alike; // on either side of the room it says the same
    for (const double side : {-1.0, 1.0})
        for (std::size_t axis = 0; axis < 3; ++axis) {
            Point place{};
            place[axis] = side;
            alike.push_back({{"p", place}, corners[axis + 1]});
        }
    EXPECT_TRUE(says(judgeCalibration(alike, 5, false)._refusal, "the scale that fits best is "));
}

TEST(PointFile, IsReadOrRefusedWithItsPlace)
{
    const auto points = parsePoints("name,x,y,z\r\n# the corners\n\n floor , 0,0 ,0\n1,0,-2.5e-1\n door,0,1,0", "f");
    ASSERT_EQ(points.size(), 3U);
    EXPECT_EQ(points[0]._name, "floor");
    EXPECT_EQ(points[1]._name, "point 2");
    EXPECT_EQ(points[1]._place, (Point{1, 0, -0.25}));
    const std::pair<const char*, const char*> rows[] = {
        {"1,2,3\nx,y,z\n", "f:2: 'x,y,z' is no point"},
        {"1,2\n", "f:1: '1,2' is no point"},
        {"1,2,3\n1,2,nan\n", "f:2: "},
        {"1,2,1e10\n", "f:1: "},
        {"0,0,0\n1,1,1\n", "f: no rotation follows from these points: there are 2"},
        {"1e6,1,0\n1e6,1,0\n1e6,1,0\n", "they are all at one place"},
        {"0,0,0\n1,1,1\n2,2,2.1\n", "they lie on a line"},
        {"", "there are 0"}};
    for (const auto& [text, expected] : rows) {
        const std::string content = text;
        EXPECT_TRUE(says(problemOf<std::runtime_error>([&] { parsePoints(content, "f"); }), expected)) << text;
    }
}

/// A guide whose device and whose time are moved by hand.
class GuideTest : public ::testing::Test {
protected:
    static constexpr KeyPress enter{Key::Enter};

    void press(const KeyPress& key) { _guide.press(key, _now); }
    /// Enter, and then a second of values about a place.
    void measure(const Point& place, double trembling = 0, int values = 11)
    {
        press(enter);
        for (int i = 0; i < values; ++i)
            _guide.frame(_now + 0.05 * i, Point{place[0] + (i % 2 ? trembling : -trembling), place[1], place[2]});
        _guide.frame(_now += 1, std::nullopt);
    }

    std::string _said; // the last line
    double _now = 100;
    Guide _guide{{{"a", {0, 0, 0}}, {"b", {1, 0, 0}}, {"c", {0, 1, 0}}},
                 0.01,
                 "the hint",
                 [this](const std::string& line) { _said = line; }};
};

TEST_F(GuideTest, TakesTheMedianOfASecondOfEachPoint)
{
    EXPECT_EQ(_said, "1 of 3: hold the device at 'a' (0 0 0) and press Enter");
    measure({1, 2, 3}, 0.004);
    EXPECT_EQ(_said, "2 of 3: hold the device at 'b' (1 0 0) and press Enter");
    press(enter);
    for (int i = 0; i < 9; ++i)
        _guide.frame(_now, Point{4, 5, 6});
    _guide.frame(_now, Point{400, 5, 6}); // one that leaps does not count
    _guide.frame(_now += 1, std::nullopt);
    press({Key::Letter, 's'});
    EXPECT_TRUE(_guide.isOver());
    const auto measured = _guide.measured();
    ASSERT_EQ(measured.size(), 2U);
    EXPECT_NEAR(measured[0]._value[0], 0.996, 1e-9);
    EXPECT_EQ(measured[1]._value, (Point{4, 5, 6}));
    EXPECT_EQ(measured[1]._point._name, "b");
}

TEST_F(GuideTest, AsksAgainWhereTheDeviceMovedOrSaidTooLittle)
{
    measure({1, 2, 3}, 0.02);
    EXPECT_TRUE(says(_said, "it moved by 0.04 in that second; allowed: up to 0.01 (--still)"));
    measure({1, 2, 3}, 0, 4);
    EXPECT_TRUE(says(_said, "only 4 values came in that second, and it takes 5; press Enter again, or look at: "
                            "the hint"));
    measure({1, 2, 3});
    press({Key::Letter, 'b'});
    EXPECT_TRUE(says(_said, "1 of 3"));
    measure({7, 8, 9});
    press({Key::Letter, 'q'});
    EXPECT_TRUE(_guide.isOver() && _guide.gaveUp());
    EXPECT_EQ(_guide.measured().at(0)._value, (Point{7, 8, 9}));
}

} // namespace
} // namespace Host
