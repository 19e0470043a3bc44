#include "trovio/SlotTypes.h"
#include "trovio/Components.h"
#include "trovio/OutSlot.h"

#include <gtest/gtest.h>
#include <set>

using namespace Trovio;

TEST(SlotTypes, FortyNamesEachWithSlotsThatHandOnTheSameObject)
{
    std::set<std::string> names;
    forEachSlotType([&]<class T>(TypeTag<T>) {
        OutSlot<T> out("out");
        InSlot<T> in("in");
        out.connect(&in);
        Data<T> record;
        if constexpr (requires { record.getValue().acquire(); })
            record.getValue().acquire();
        out.push(record);
        EXPECT_TRUE(in.pop().getValue() == record.getValue());
        EXPECT_TRUE(withSlotType(out.getTypeName(), [](auto) {}));
        names.insert(out.getTypeName());
        out.disconnect(&in);
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
}

TEST(SlotTypes, MatrixFromAnArrayIsTransposedIfAsked)
{
    const float source[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    const float transposed[9] = {0, 3, 6, 1, 4, 7, 2, 5, 8};
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(Matrix3<float>(source, true)[i], transposed[i]);
        EXPECT_EQ(Matrix3<float>(source, false)[i], source[i]);
    }
}
