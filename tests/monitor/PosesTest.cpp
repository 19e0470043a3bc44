#include "monitor/codec/Poses.h"
#include "tests/monitor/AllValues.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace Monitor;
using namespace Trovio;

namespace {

template <class T>
std::string note(Poses& poses, const std::string& label, const T& value, double stamp)
{
    return poses.note(label, *SlotCodec::find(TypeName<T>::getName()), encoded(value), Time(stamp));
}

using Lines = std::vector<std::string>;

/// "frame at time: x y z, x y z w" in thousandths for each pose in the message.
Lines linesOf(const Bytes& message)
{
    CdrReader in(message);
    Lines lines(in.getCount(1));
    for (std::string& line : lines) {
        const auto seconds = in.get<std::int32_t>();
        in.get<std::uint32_t>();
        EXPECT_EQ(in.getText(), "world");
        line = std::string(in.getText()) + " at " + std::to_string(seconds) + ":";
        for (int i = 0; i < 7; ++i)
            line += " " + std::to_string(std::lround(1000 * in.get<double>()));
    }
    EXPECT_FALSE(in.hasFailed()) << in.problem();
    return lines;
}

Lines taken(Poses& poses)
{
    Bytes message;
    return poses.take(message) ? linesOf(message) : Lines();
}

} // namespace

TEST(Poses, ArePositionsWithRotationsAndMatrices)
{
    std::map<std::string, const SlotCodec*> slots;
    for (const auto& [label, type] : std::map<std::string, const char*>{{"A/position", "Vec3f"},
                                                                        {"A/rotation", "Rotation"},
                                                                        {"B/position", "Vec3f"},
                                                                        {"B/rotation", "Vec4f"},
                                                                        {"C/rotation", "Rotation"},
                                                                        {"D/place", "Matrix4d"},
                                                                        {"E/place", "Matrix3d"}})
        slots[label] = SlotCodec::find(type);
    EXPECT_EQ(Poses::labelsAmong(slots), (Lines{"A/position", "A/rotation", "D/place"}));
}

TEST(Poses, PositionAndRotationOfOneMomentAreOnePose)
{
    Poses poses;
    note(poses, "A/position", Vec3<double>(1, 2, 3), 5);
    EXPECT_EQ(taken(poses), Lines{}) << "its rotation is not known";
    note(poses, "A/rotation", Rotation(0, 0, 2, 0), 6);
    EXPECT_EQ(taken(poses), Lines{"A at 6: 1000 2000 3000 0 0 1000 0"});
    note(poses, "A/position", Vec3<float>(4, 5, 6), 7);
    note(poses, "A/rotation", Rotation(1, 0, 0, 0), 7);
    note(poses, "A/rotation", Rotation(0, 1, 0, 0), 8);
    note(poses, "A/rotation", Rotation(0, 0, 1, 0), 9);
    EXPECT_EQ(taken(poses), (Lines{"A at 7: 4000 5000 6000 1000 0 0 0", "A at 8: 4000 5000 6000 0 1000 0 0",
                                   "A at 9: 4000 5000 6000 0 0 1000 0"}));
    EXPECT_EQ(taken(poses), Lines{});
    Bytes newest;
    ASSERT_TRUE(poses.takeNewest(newest));
    EXPECT_EQ(linesOf(newest), Lines{"A at 9: 4000 5000 6000 0 0 1000 0"});
    poses.forget("A/position");
    EXPECT_FALSE(poses.takeNewest(newest));
}

TEST(Poses, MatrixThatOnlyTurnsAndMovesIsOne)
{
    const double quarterTurn[] = {0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1};
    const double halfTurn[] = {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1};
    const double scaled[] = {0, -2, 0, 1, 2, 0, 0, 2, 0, 0, 2, 3, 0, 0, 0, 1};
    const double mirror[] = {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const double projection[] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 1, 1};
    Poses poses;
    EXPECT_EQ(note(poses, "M", Matrix4<double>(quarterTurn, false), 1), "");
    for (const double* const other : {scaled, mirror, projection})
        EXPECT_EQ(note(poses, "M", Matrix4<double>(other, false), 2), "the matrix does more than turn and move");
    EXPECT_EQ(note(poses, "M", Matrix4<float>(), 3), "");
    EXPECT_EQ(note(poses, "M", Matrix4<double>(halfTurn, false), 4), "");
    EXPECT_EQ(note(poses, "M", filled<Matrix4<double>>(NAN), 5), "it holds what is no number");
    EXPECT_EQ(note(poses, "A/rotation", Rotation(0, 0, 0, 0), 5), "the rotation has no direction");
    EXPECT_EQ(note(poses, "A/position", filled<Vec3<float>>(INFINITY), 5), "it holds what is no number");
    EXPECT_EQ(taken(poses),
              (Lines{"M at 1: 1000 2000 3000 0 0 707 707", "M at 3: 0 0 0 0 0 0 1000", "M at 4: 0 0 0 0 1000 0 0"}));
}
