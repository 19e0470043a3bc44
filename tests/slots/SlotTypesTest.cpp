#include "trovio/SlotTypes.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Components.h"
#include "trovio/OutSlot.h"

#include <gtest/gtest.h>
#include <set>

using namespace Trovio;

TEST(SlotTypes, FortyNamesEachWithSlotsThatCarryItsValue)
{
    std::set<std::string> names;
    forEachSlotType([&]<class T>(TypeTag<T>) {
        OutSlot<T> out("out");
        BufferedInSlot<T> ring("ring", 2);
        InSlot<T> single("in");
        out.connect(&ring);
        out.connect(&single);
        Data<T> record;
        EXPECT_EQ(record.getTimeStamp(), Time(0));
        EXPECT_TRUE(record.getValue() == T{});
        if constexpr (requires { record.getValue().acquire(); })
            record.getValue().acquire();
        record.setTimeStamp(Time(2));
        out.push(record);
        EXPECT_TRUE(ring.pop().getValue() == record.getValue()) << "shared values arrive as the same object";
        EXPECT_EQ(single.pop().getTimeStamp(), Time(2));
        EXPECT_EQ(ring.getTypeID(), typeid(T));
        EXPECT_TRUE(withSlotType(out.getTypeName(), [](auto tag) { static_cast<void>(tag); }));
        names.insert(out.getTypeName());
        out.disconnect(&ring);
        out.disconnect(&single);
    });
    EXPECT_EQ(names.size(), 40U);
    EXPECT_FALSE(withSlotType("Plane", [](auto) {}));
}

TEST(SlotTypes, DefaultValuesAreZerosButForRotationsAndMatrices)
{
    forEachSlotType([]<class T>(TypeTag<T>) {
        if constexpr (Numeric<T>) {
            const T value{};
            double sum = 0;
            for (std::size_t i = 0; i < Components<T>::Count; ++i)
                sum += static_cast<double>(Components<T>::get(value, i));
            const std::string name = TypeName<T>::getName();
            const double expected = name == "Rotation" ? 1 : name.starts_with("Matrix") ? name[6] - '0' : 0;
            EXPECT_EQ(sum, expected) << name;
        }
    });
    EXPECT_EQ(Rotation()[3], 1.0F);
}

TEST(SlotTypes, MatrixFromAnArrayIsTransposedIfAsked)
{
    const float source[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const Matrix3<float> transposed(source, true);
    const float expected[9] = {0, 3, 6, 1, 4, 7, 2, 5, 8};
    const Matrix3<float> straight(source, false);
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(transposed[i], expected[i]);
        EXPECT_EQ(straight[i], source[i]);
    }
    EXPECT_EQ(Matrix4<float>(source, true)[1], 4.0F);
}

TEST(SlotTypes, RecordMadeFromAValueCarriesTheCurrentTime)
{
    const double before = Time::getCurrentTime().getSeconds();
    const Data<std::string> record(std::string("text"));
    EXPECT_GE(record.getTimeStamp().getSeconds(), before);
    EXPECT_LE(record.getTimeStamp().getSeconds(), Time::getCurrentTime().getSeconds());
    EXPECT_EQ(record.getValue(), "text");
}
