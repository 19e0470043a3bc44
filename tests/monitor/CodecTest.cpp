#include "monitor/codec/Encode.h"
#include "monitor/codec/SlotCodec.h"
#include "tests/nodes/SampleValues.h"
#include "trovio/SlotTypes.h"

#include <gtest/gtest.h>
#include <set>

using namespace Monitor;
using namespace Trovio;

namespace {

template <class T>
Bytes encoded(const T& value)
{
    Bytes bytes;
    encode(Data<T>(value, Time(1.5)), bytes);
    return bytes;
}

TEST(Codec, ValuesOfAllTypesComeBackEqual)
{
    forEachSlotType([]<class T>(TypeTag<T>) {
        for (const T& value : Nodes::sampleValues<T>()) {
            T back{};
            std::string problem;
            EXPECT_TRUE(decode(encoded(value), back, problem)) << TypeName<T>::getName() << ": " << problem;
            EXPECT_TRUE(Nodes::isSame(back, value)) << TypeName<T>::getName();
        }
    });
}

TEST(Codec, EachTypeHasASchemaOfItsOwn)
{
    std::set<std::string_view> names;
    for (const SlotCodec* codec : SlotCodec::all())
        names.insert(codec->schemaName());
    EXPECT_EQ(names.size(), 40U);
    EXPECT_EQ(SlotCodec::find("Vec3f")->schemaName(), "geometry_msgs/msg/Point32");
    EXPECT_EQ(SlotCodec::find("Plane"), nullptr);
}

} // namespace
