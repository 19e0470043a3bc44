#include "BridgeFixture.h"

#include "trovio/Node.h"
#include <cmath>
#include <numbers>
#include <numeric>

namespace {

using Texts = std::vector<std::string>;
using namespace Trovio;

class BridgeOutput : public Bridge {
protected:
    /// What the sensor sends when it is served once. The field's value is set before.
    template <class T>
    Data<T> sent(DirectSensor& sensor)
    {
        InSlot<T> in("reader");
        auto& out = slot<OutSlot<T>>(sensor);
        out.connect(&in);
        notify(sensor, 10.0);
        out.disconnect(&in);
        return in.top();
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

TEST_F(BridgeOutput, SingleValuesAreConverted)
{
    DirectSensor& integer = add("SFInt32", "i", true);
    field<SFInt32>(integer).value() = -5;
    EXPECT_EQ(sent<long>(integer).getValue(), -5L);
    DirectSensor& time = add("SFTime", "t", true);
    field<SFTime>(time).value() = 2.5;
    EXPECT_EQ(sent<Time>(time).getValue(), Time(2.5));
    DirectSensor& text = add("SFString", "s", true);
    field<SFString>(text).value() = "out";
    EXPECT_EQ(sent<std::string>(text).getValue(), "out");
    DirectSensor& matrix = add("SFMatrix4f", "m", true);
    std::iota(field<SFMatrix4f>(matrix).value().data(), field<SFMatrix4f>(matrix).value().data() + 16, 0.0F);
    const auto rows = sent<Matrix4<float>>(matrix).getValue();
    const float expected[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    EXPECT_TRUE(std::equal(expected, expected + 16, rows.data()));
}

TEST_F(BridgeOutput, RotationsGoOutAsQuaternions)
{
    DirectSensor& sensor = add("SFRotation", "r", true);
    field<SFRotation>(sensor).value().setAxisAngle(0, 0, 0, 1);
    EXPECT_EQ(sent<Trovio::Rotation>(sensor).getValue(), Trovio::Rotation(0, 0, 0, 1));
    field<SFRotation>(sensor).value().setAxisAngle(0, 2, 0, std::numbers::pi_v<float>);
    const auto half = sent<Trovio::Rotation>(sensor).getValue();
    EXPECT_NEAR(half[1], 1.0F, 1e-6);
    EXPECT_NEAR(half[3], 0.0F, 1e-6);
}

TEST_F(BridgeOutput, MultipleValuesTravelInVectorsOfTheirOwn)
{
    DirectSensor& sensor = add("MFFloat", "f", true);
    const auto empty = sent<SharedVector<float>>(sensor);
    ASSERT_TRUE(static_cast<bool>(empty.getValue()));
    EXPECT_TRUE(empty.getValue()->empty());

    field<MFFloat>(sensor).values() = {1.0F, 2.0F};
    const auto kept = sent<SharedVector<float>>(sensor);
    field<MFFloat>(sensor).values() = {3.0F};
    const auto next = sent<SharedVector<float>>(sensor);
    EXPECT_EQ(*kept.getValue(), (std::vector<float>{1.0F, 2.0F})) << "a record that a reader keeps stays as it was";
    EXPECT_EQ(*next.getValue(), (std::vector<float>{3.0F}));

    DirectSensor& bits = add("MFBool", "b", true);
    field<MFBool>(bits).values() = {true, false, true};
    EXPECT_EQ(*sent<SharedVector<bool>>(bits).getValue(), (std::vector<bool>{true, false, true}));
    DirectSensor& integers = add("MFInt32", "i", true);
    field<MFInt32>(integers).values() = {-1, 2};
    EXPECT_EQ(*sent<SharedVector<long>>(integers).getValue(), (std::vector<long>{-1, 2}));
}

TEST_F(BridgeOutput, ImagesHaveASlotAndAreNeverSent)
{
    for (const char* type : {"SFImage", "MFImage"}) {
        LogCapture log(1);
        DirectSensor& sensor = add(type, type, true);
        auto* const out = dynamic_cast<BasicOutSlot*>(_handler->getSlot(&sensor));
        ASSERT_NE(out, nullptr);
        notify(sensor, 1.0);
        notify(sensor, 2.0);
        EXPECT_EQ(out->getWritten(), 0U);
        const std::string text = std::string("Can not handle Trovio Slot of DirectSensor type ") + type + "\n";
        EXPECT_EQ(log.texts(), (Texts{text, text}));
    }
}

TEST_F(BridgeOutput, UnhandledTypesAndEmptyLabelsAreDeclined)
{
    LogCapture log(2);
    EXPECT_EQ(_handler->getSlot(&add("SFNode", "n", true)), nullptr);
    EXPECT_EQ(_handler->getSlot(&add("SFFloat", "", true)), nullptr);
    EXPECT_EQ(log.texts(), (Texts{"Can not handle Trovio Slot of DirectSensor type SFNode\n"}));
}

TEST_F(BridgeOutput, FlagSetAfterBindingChangesNothing)
{
    LogCapture log(2);
    DirectSensor& input = add("SFFloat", "in");
    input.setOutput(true);
    notify(input, 1.0);
    DirectSensor& output = add("SFFloat", "out", true);
    output.setOutput(false);
    notify(output, 1.0);
    EXPECT_EQ(slot<OutSlot<float>>(output).getWritten(), 0U);
    EXPECT_EQ(log.texts(), Texts{});
}
