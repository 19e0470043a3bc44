#include "BridgeFixture.h"
#include "tests/support/Says.h"

namespace {

using Texts = std::vector<std::string>;
using namespace Trovio;

template <class E>
SharedVector<E> shared(std::vector<E> elements)
{
    SharedVector<E> vector;
    vector.acquire();
    *vector = std::move(elements);
    return vector;
}

class BridgeInput : public Bridge {
protected:
    /// Pushes one value into the sensor's slot and serves the sensor.
    template <class T>
    void receive(DirectSensor& sensor, const T& value)
    {
        slot<InSlot<T>>(sensor).push(Data<T>(value, Time(1)));
        notify(sensor, 10.0);
    }
    /// The field of a new sensor that has received one value.
    template <class FieldT, class T>
    FieldT& received(const T& value)
    {
        DirectSensor& sensor = add(FieldT().getTypeName(), "sensor" + std::to_string(_sensors.size()));
        receive(sensor, value);
        return field<FieldT>(sensor);
    }
};

/// A field that changes what it says it is.
class ShiftingField : public SFFloat {
public:
    int getTypeCode() const override
    {
        const int code = _codes.front();
        if (_codes.size() > 1)
            _codes.erase(_codes.begin());
        return code;
    }
    mutable std::vector<int> _codes{9};
};

} // namespace

TEST_F(BridgeInput, BufferSizeChoosesTheSlotAndTheDescriptionNamesIt)
{
    for (const unsigned size : {0U, 1U})
        EXPECT_EQ(
            dynamic_cast<BufferedInSlot<float>*>(_handler->getSlot(&add("SFFloat", std::to_string(size), false, size))),
            nullptr);
    auto& ring = slot<BufferedInSlot<float>>(add("SFFloat", "two", false, 2));
    EXPECT_EQ(ring.getName(), "two description");
    for (const float value : {1.0F, 2.0F, 3.0F})
        ring.push(Data<float>(value, Time(1)));
    EXPECT_EQ(ring.getCounts().waiting, 2U);
}

TEST_F(BridgeInput, IntegersKeepTheirLow32Bits)
{
    EXPECT_EQ(received<SFInt32>((1L << 32) + 1).value(), 1);
    EXPECT_EQ(received<SFInt32>(-1L).value(), -1);
}

TEST_F(BridgeInput, RotationComesAsQuaternionAndLeavesTheAxisStale)
{
    Ostrel::Rotation& rotation = received<SFRotation>(Trovio::Rotation(0, 1, 0, 0)).value();
    EXPECT_EQ(rotation.mark(), 2);
    EXPECT_EQ(rotation.quaternion()[1], 1.0F);
    EXPECT_NEAR(rotation.angle(), 3.14159F, 1e-4);
}

TEST_F(BridgeInput, MatricesAreTransposed)
{
    Matrix3<float> matrix;
    matrix[0 * 3 + 1] = 5;
    EXPECT_EQ(received<SFMatrix3f>(matrix).value().data()[1 * 3 + 0], 5.0F);
    std::vector<Matrix4<double>> matrices(2);
    matrices[1][3] = 7;
    EXPECT_EQ(received<MFMatrix4d>(shared(matrices)).values().at(1).data()[12], 7.0);
}

TEST_F(BridgeInput, NullHandleBringsWhateverThePoolHolds)
{
    shared<double>({4.0, 5.0}); // used, and given back
    EXPECT_EQ(received<MFDouble>(SharedVector<double>()).values(), (std::vector<double>{4.0, 5.0}));
}

TEST_F(BridgeInput, ImagesRefillTheImageThatIsThere)
{
    DirectSensor& sensor = add("SFImage", "p");
    const osg::Image& image = *field<SFImage>(sensor).value();
    for (const auto& [format, expected] : {std::pair{Image::RGBA, 0x1908U},
                                           {Image::BGR, 0x80E0U},
                                           {Image::RGB, 0x1907U},
                                           {Image::BGRA, 0x80E1U},
                                           {Image::Luminance, 0x1909U},
                                           {Image::LuminanceAlpha, 0x1907U}}) { // the last one is converted
        SharedImage picture;
        *picture = Image(format, 3, 2);
        picture->getData()[0] = 200;
        receive(sensor, picture);
        EXPECT_EQ(field<SFImage>(sensor).value().get(), &image);
        EXPECT_EQ(std::tuple(image.pixelFormat(), image.width(), image.height()), std::tuple(expected, 3, 2));
        EXPECT_EQ(image.data()[0], 200);
        EXPECT_NE(image.data(), picture.get()->getData());
    }
}

TEST_F(BridgeInput, AnImageThatCannotBeConvertedIsNamedOnceForEachSlot)
{
    const LogCapture log(2);
    SharedImage depth;
    *depth = Image(Image::Depth, 640, 480);
    for (const char* label : {"first", "second"}) {
        DirectSensor& sensor = add("SFImage", label);
        for (int i = 0; i < 3; ++i)
            receive(sensor, depth);
        EXPECT_EQ(field<SFImage>(sensor).value()->width(), 0);
    }
    receive(add("MFImage", "several"), shared<Image>({Image(Image::RGB, 1, 1), Image(Image::Depth, 2, 1)}));
    const auto texts = log.texts();
    ASSERT_EQ(texts.size(), 3U);
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_TRUE(
            says(texts[i], std::array{"Slot first: format 20, 640 x 480 pixels", "Slot second: format 20, 640 x",
                                      "Slot several: format 20, 2 x 1 pixels"}[i]));
}

TEST_F(BridgeInput, NodesAreRefusedWithAMessageAndEmptyLabelsWithout)
{
    for (const bool output : {false, true}) {
        LogCapture log(2);
        EXPECT_EQ(_handler->getSlot(&add("SFNode", "node", output)), nullptr);
        EXPECT_EQ(_handler->getSlot(&add("SFFloat", "", output)), nullptr) << "no label, and no message";
        EXPECT_EQ(log.texts(), Texts{"Can not handle Trovio Slot of DirectSensor type SFNode\n"});
    }
}

TEST_F(BridgeInput, SensorsWithoutFieldOrProcAreDeclinedSilently)
{
    LogCapture log(2);
    DirectSensor empty;
    EXPECT_EQ(_handler->createUpdateObserver(&empty), nullptr);
    EXPECT_EQ(_handler->createOutputUpdateObserver(&empty), nullptr);
    empty.setLabel("label");
    empty.setDirectSensorProc(std::make_unique<DirectSensorProc>(nullptr));
    EXPECT_EQ(_handler->createUpdateObserver(&empty), nullptr);
    EXPECT_EQ(_handler->createUpdateObserver(nullptr), nullptr);
    EXPECT_EQ(log.texts(), Texts{});
}

TEST_F(BridgeInput, TypeCodeIsAskedForEachValue)
{
    auto shifting = std::make_unique<ShiftingField>();
    ShiftingField& changing = *shifting;
    DirectSensor& sensor = *_sensors.emplace_back(std::make_unique<DirectSensor>(std::move(shifting)));
    sensor.setLabel("shifting");
    sensor.setBufferSize(8);
    sensor.setContext(&_context);
    auto& ring = slot<BufferedInSlot<float>>(sensor);
    for (const float value : {1.0F, 2.0F, 3.0F})
        ring.push(Data<float>(value, Time(1)));

    LogCapture log(1);
    changing._codes = {9, 23, 9, 37}; // a float, nobody's type, a float, then a vector
    notify(sensor, 1.0);
    EXPECT_EQ(changing.value(), 2.0F);
    EXPECT_EQ(ring.getCounts().waiting, 1U) << "a slot that does not fit the code ends the drain";
    EXPECT_EQ(log.texts(), (Texts{"Can not handle Trovio Slot of DirectSensor type SFFloat\n"}));
    EXPECT_TRUE(says(log.entries().at(0)._function, "UpdateObserver::update("));

    changing._codes = {23};
    notify(sensor, 2.0);
    EXPECT_EQ(log.texts().size(), 1U + 64U) << "the frame ends where nothing can be taken";
    EXPECT_EQ(ring.getActivity()._cutShort, 1U);
}

TEST_F(BridgeInput, FrameEndsHoweverFastValuesCome)
{
    // Each change brings the next value.
    struct Echo : Observer {
        Echo(SFFloat& field, InSlot<float>& slot) : Observer("echo"), _slot(slot)
        {
            field.getSendSubject().attach(*this);
        }
        void notify(const TimeStamp& now, BaseObject*, BaseObject*, BaseObject*) override
        {
            EXPECT_EQ(now, _frame);
            _slot.push(Data<float>(1, Time(1)));
        }
        InSlot<float>& _slot;
        TimeStamp _frame = 1.0;
    };
    for (const auto& [bufferSize, rounds] : {std::pair{1U, 64U}, {32U, 64U}, {33U, 66U}, {100U, 200U}}) {
        DirectSensor& sensor = add("SFFloat", std::to_string(bufferSize), false, bufferSize);
        auto& in = slot<InSlot<float>>(sensor);
        Echo echo(field<SFFloat>(sensor), in);
        in.push(Data<float>(1, Time(3)));
        notify(sensor, 1.0);
        echo._frame = 2.0;
        notify(sensor, 2.0); // goes on where the first had to stop
        EXPECT_EQ(in.getCounts().taken, 2 * rounds);
        EXPECT_EQ(in.getActivity()._cutShort, 2U);
    }
}
