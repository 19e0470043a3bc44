#include "BridgeFixture.h"

#include <numeric>

namespace {

using Texts = std::vector<std::string>;
using namespace Trovio;

class BridgeOutput : public Bridge {
protected:
    /// What the sensor sends when it is served once. The field's value is set before.
    template <class T>
    T sent(DirectSensor& sensor)
    {
        InSlot<T> in("reader");
        auto& out = slot<OutSlot<T>>(sensor);
        out.connect(&in);
        notify(sensor, 10.0);
        out.disconnect(&in);
        return in.top().getValue();
    }
};

} // namespace

TEST_F(BridgeOutput, EveryNotificationSendsTheValueWithTheCurrentTime)
{
    DirectSensor& sensor = add("SFVec3f", "v", true);
    std::iota(field<SFVec3f>(sensor).value().data(), field<SFVec3f>(sensor).value().data() + 3, 1.0F);
    auto& out = slot<OutSlot<Vec3<float>>>(sensor);
    EXPECT_EQ(out.getName(), "v description");
    BufferedInSlot<Vec3<float>> in("reader", 4);
    out.connect(&in);
    const double before = Time::getCurrentTime().getSeconds();
    notify(sensor, 10.0);
    notify(sensor, 11.0); // unchanged, and sent again
    ASSERT_EQ(in.getCounts().waiting, 2U);
    EXPECT_GE(in.top().getTimeStamp().getSeconds(), before);
    EXPECT_EQ(in.pop().getValue(), Vec3<float>(1, 2, 3));
    out.disconnect(&in);
}

TEST_F(BridgeOutput, MultipleValuesTravelInVectorsOfTheirOwn)
{
    DirectSensor& sensor = add("MFFloat", "f", true);
    const auto empty = sent<SharedVector<float>>(sensor);
    ASSERT_TRUE(empty) << "no null handle";
    EXPECT_TRUE(empty->empty());
    field<MFFloat>(sensor).values() = {1.0F, 2.0F};
    const auto kept = sent<SharedVector<float>>(sensor);
    field<MFFloat>(sensor).values() = {3.0F};
    EXPECT_EQ(*sent<SharedVector<float>>(sensor), (std::vector<float>{3.0F}));
    EXPECT_EQ(*kept, (std::vector<float>{1.0F, 2.0F})) << "a record that a reader keeps stays as it was";
}

TEST_F(BridgeOutput, ImagesHaveASlotAndAreNeverSent)
{
    for (const char* type : {"SFImage", "MFImage"}) {
        LogCapture log(1);
        DirectSensor& sensor = add(type, type, true);
        notify(sensor, 1.0);
        notify(sensor, 2.0);
        EXPECT_EQ(dynamic_cast<BasicOutSlot&>(*_handler->getSlot(&sensor)).getWritten(), 0U);
        const std::string text = std::string("Can not handle Trovio Slot of DirectSensor type ") + type + "\n";
        EXPECT_EQ(log.texts(), (Texts{text, text}));
    }
}
