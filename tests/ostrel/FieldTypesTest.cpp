#include "ostrel/FieldTypes.h"

#include "ostrel/FieldClass.h"
#include <cmath>
#include <gtest/gtest.h>

using namespace Ostrel;

namespace {

TEST(FieldClass, IsFoundByCodeAndByExactName)
{
    ASSERT_EQ(FieldClass::all().size(), 42U);
    for (int code = 1; code <= 42; ++code) {
        const FieldClass* const row = FieldClass::find(code);
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(FieldClass::find(row->name()), row);
        EXPECT_EQ(row->create()->getTypeCode(), code);
    }
    for (const int code : {0, 43, -1})
        EXPECT_EQ(FieldClass::find(code), nullptr);
    for (const char* name : {"", "SFPlane", "sfbool", "SFBool "})
        EXPECT_EQ(FieldClass::find(name), nullptr);
}

TEST(FieldTypes, CopiedImagesAreNotShared)
{
    MFImage from, to;
    from.values().resize(2);
    from.values()[1]->set(osg::Image::Luminance, 1, 1);
    to.values().resize(3);
    const osg::Image* const before = to.values()[1].get();
    to.copyValue(from);
    from.values()[1]->data()[0] = 5;
    ASSERT_EQ(to.values().size(), 2U);
    EXPECT_EQ(to.values()[1].get(), before);
    EXPECT_EQ(to.values()[1]->data()[0], 0);
}

TEST(Rotation, QuaternionFollowsAxisAndAngle)
{
    struct Row {
        std::array<float, 4> _axisAngle, _quaternion;
    };
    const float pi = 3.14159265F;
    const float half = std::sqrt(0.5F);
    for (const Row& row :
         {Row{{0, 0, 0, 1}, {0, 0, 0, 1}}, Row{{0, 2, 0, pi}, {0, 1, 0, 0}}, Row{{0.5e-6F, 0, 0, pi}, {0, 0, 0, 1}},
          Row{{0, 0, -3, pi / 2}, {0, 0, -half, half}}, Row{{3e38F, 0, 3e38F, pi}, {half, 0, half, 0}}}) {
        Rotation rotation;
        rotation.setAxisAngle(row._axisAngle[0], row._axisAngle[1], row._axisAngle[2], row._axisAngle[3]);
        EXPECT_EQ(rotation.mark(), Rotation::QuaternionStale);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(rotation.quaternion()[i], row._quaternion[i], 1e-6F);
        EXPECT_EQ(rotation.mark(), Rotation::BothValid);
    }
}

TEST(Rotation, QuaternionComesOutAsItWentInWhateverItsLength)
{
    Rotation rotation;
    rotation.setQuaternion(0.1F, 0.2F, 0.3F, 0.4F);
    EXPECT_EQ(rotation.quaternion(), (std::array<float, 4>{0.1F, 0.2F, 0.3F, 0.4F}));
    rotation.setQuaternion(0.0F, 0.0F, 0.0F, -1.0F);
    EXPECT_EQ(rotation.angle(), 0.0F);
}

} // namespace
