#include "BridgeFixture.h"

#include "sensorManager/FieldTypes.h"

namespace {

using Texts = std::vector<std::string>;
using namespace Trovio;

class BridgeInput : public Bridge {
protected:
    /// Pushes one value into the sensor's slot and serves the sensor.
    template <class T>
    void receive(DirectSensor& sensor, const T& value)
    {
        slot<InSlot<T>>(sensor).push(Data<T>(value, Time(1)));
        notify(sensor, 10.0);
    }
};

/// Notes each change of a field, with its time as the field's observers hear of it.
class ChangeRecorder : public Observer {
public:
    explicit ChangeRecorder(SFFloat& field) : Observer("recorder"), _field(field)
    {
        field.getSendSubject().attach(*this);
    }
    void notify(const TimeStamp& now, BaseObject*, BaseObject*, BaseObject*) override
    {
        _changes.emplace_back(now, _field.value());
    }
    std::vector<std::pair<double, float>> _changes;

private:
    SFFloat& _field;
};

} // namespace

TEST_F(BridgeInput, BufferSizeChoosesTheSlotAndTheValueNamesIt)
{
    EXPECT_EQ(dynamic_cast<BufferedInSlot<float>*>(_handler->getSlot(&add("SFFloat", "none", false, 0))), nullptr);
    EXPECT_EQ(dynamic_cast<BufferedInSlot<float>*>(_handler->getSlot(&add("SFFloat", "one", false, 1))), nullptr);
    DirectSensor& two = add("SFFloat", "two", false, 2);
    auto& ring = slot<BufferedInSlot<float>>(two);
    EXPECT_EQ(ring.getName(), "two description");
    for (const float value : {1.0F, 2.0F, 3.0F})
        ring.push(Data<float>(value, Time(1)));
    EXPECT_EQ(ring.getCounts().waiting, 2U);
}

TEST_F(BridgeInput, EveryQueuedValueIsAChangeOfItsOwnWithTheFramesTime)
{
    DirectSensor& sensor = add("SFFloat", "speed", false, 8);
    auto& ring = slot<BufferedInSlot<float>>(sensor);
    ChangeRecorder recorder(field<SFFloat>(sensor));
    notify(sensor, 4.0);
    for (const float value : {1.0F, 2.0F, 2.0F})
        ring.push(Data<float>(value, Time(1)));
    notify(sensor, 5.0);
    notify(sensor, 6.0);
    EXPECT_EQ(recorder._changes, (std::vector<std::pair<double, float>>{{5.0, 1.0F}, {5.0, 2.0F}, {5.0, 2.0F}}));
    EXPECT_TRUE(ring.empty());
}

TEST_F(BridgeInput, NumbersAndTextsArrive)
{
    DirectSensor& boolean = add("SFBool", "b");
    receive(boolean, true);
    EXPECT_TRUE(field<SFBool>(boolean).value());
    DirectSensor& integer = add("SFInt32", "i");
    receive<long>(integer, (1L << 32) + 1);
    EXPECT_EQ(field<SFInt32>(integer).value(), 1);
    receive<long>(integer, -1);
    EXPECT_EQ(field<SFInt32>(integer).value(), -1);
    DirectSensor& time = add("SFTime", "t");
    receive(time, Time(12.5));
    EXPECT_EQ(field<SFTime>(time).value(), 12.5);
    DirectSensor& text = add("SFString", "s");
    receive(text, std::string("wand"));
    EXPECT_EQ(field<SFString>(text).value(), "wand");
    DirectSensor& color = add("SFColorRGBA", "c");
    receive(color, Trovio::ColorRGBA(0.1F, 0.2F, 0.3F, 0.4F));
    EXPECT_EQ(field<SFColorRGBA>(color).value().data()[3], 0.4F);
    DirectSensor& vector = add("SFVec3d", "v");
    receive(vector, Vec3<double>(1, 2, 3));
    EXPECT_EQ(field<SFVec3d>(vector).value().data()[2], 3.0);
}

TEST_F(BridgeInput, RotationComesAsQuaternionAndLeavesTheAxisStale)
{
    DirectSensor& sensor = add("SFRotation", "r");
    receive(sensor, Trovio::Rotation(0, 1, 0, 0));
    EXPECT_EQ(field<SFRotation>(sensor).value().mark(), 2);
    EXPECT_EQ(field<SFRotation>(sensor).value().quaternion()[1], 1.0F);
    EXPECT_NEAR(field<SFRotation>(sensor).value().angle(), 3.14159F, 1e-4);
}

TEST_F(BridgeInput, MatricesAreTransposed)
{
    DirectSensor& sensor = add("SFMatrix3f", "m");
    Matrix3<float> matrix;
    matrix[0 * 3 + 1] = 5;
    receive(sensor, matrix);
    EXPECT_EQ(field<SFMatrix3f>(sensor).value().data()[1 * 3 + 0], 5.0F);
    EXPECT_EQ(field<SFMatrix3f>(sensor).value().data()[0 * 3 + 1], 0.0F);

    DirectSensor& many = add("MFMatrix4d", "mm");
    SharedVector<Matrix4<double>> matrices;
    matrices.acquire();
    matrices->assign(2, Matrix4<double>());
    (*matrices)[1][3] = 7;
    receive(many, matrices);
    ASSERT_EQ(field<MFMatrix4d>(many).values().size(), 2U);
    EXPECT_EQ(field<MFMatrix4d>(many).values()[1].data()[12], 7.0);
}

TEST_F(BridgeInput, MultipleValuesTakeTheVectorsLength)
{
    DirectSensor& integers = add("MFInt32", "i");
    SharedVector<long> longs;
    longs.acquire();
    *longs = {1, (1L << 32) + 2, -3};
    receive(integers, longs);
    EXPECT_EQ(field<MFInt32>(integers).values(), (std::vector<std::int32_t>{1, 2, -3}));
    longs.acquire();
    longs->clear();
    receive(integers, longs);
    EXPECT_EQ(field<MFInt32>(integers).values(), std::vector<std::int32_t>{});
    DirectSensor& bits = add("MFBool", "b");
    SharedVector<bool> bools;
    bools.acquire();
    *bools = {true, false, true};
    receive(bits, bools);
    EXPECT_EQ(field<MFBool>(bits).values(), (std::vector<bool>{true, false, true}));
}

TEST_F(BridgeInput, NullHandleBringsWhateverThePoolHolds)
{
    DirectSensor& sensor = add("MFDouble", "d");
    {
        SharedVector<double> used;
        used.acquire();
        *used = {4.0, 5.0};
    }
    receive(sensor, SharedVector<double>());
    EXPECT_EQ(field<MFDouble>(sensor).values(), (std::vector<double>{4.0, 5.0}));
}

TEST_F(BridgeInput, ImagesRefillTheImageThatIsThere)
{
    struct Row {
        Image::Format _format;
        std::uint32_t _expected;
    };
    DirectSensor& sensor = add("SFImage", "p");
    const osg::Image* const held = field<SFImage>(sensor).value().get();
    for (const Row& row :
         {Row{Image::BGR, 0x80E0}, Row{Image::RGB, 0x1907}, Row{Image::BGRA, 0x80E1}, Row{Image::RGBA, 0x1908},
          Row{Image::Luminance, 0x1909}, Row{Image::LuminanceAlpha, 0x1907}}) {
        SharedImage picture;
        picture.acquire();
        *picture = Image(row._format, 3, 2);
        picture->getData()[0] = 200;
        receive(sensor, picture);
        const osg::Image& image = *field<SFImage>(sensor).value();
        EXPECT_EQ(&image, held);
        EXPECT_EQ(image.pixelFormat(), row._expected);
        EXPECT_EQ(image.width(), 3);
        EXPECT_EQ(image.height(), 2);
        EXPECT_EQ(image.data()[0], 200);
        EXPECT_NE(image.data(), picture.get()->getData());
    }
    DirectSensor& many = add("MFImage", "pp");
    SharedVector<Image> pictures;
    pictures.acquire();
    *pictures = {Image(Image::RGB, 1, 1), Image(Image::RGBA, 2, 2)};
    receive(many, pictures);
    ASSERT_EQ(field<MFImage>(many).values().size(), 2U);
    EXPECT_EQ(field<MFImage>(many).values()[1]->pixelFormat(), 0x1908U);
}

TEST_F(BridgeInput, EveryCodeOfTheTableGetsItsSlotAndOthersAreRefused)
{
    for (int code = 1; code <= 42; ++code) {
        LogCapture log(1);
        const std::string& name = FieldClass::find(code)->name();
        DirectSensor& sensor = add(name, "code" + std::to_string(code));
        Slot* const made = _handler->getSlot(&sensor);
        if (code == 23 || code == 24) {
            EXPECT_EQ(made, nullptr);
            EXPECT_EQ(log.texts(), (Texts{"Can not handle Trovio Slot of DirectSensor type " + name + "\n"}));
            EXPECT_NE(log.entries()[0]._function.find("TrovioSensorHandler::createUpdateObserver("), std::string::npos);
            continue;
        }
        ASSERT_NE(made, nullptr) << name;
        EXPECT_EQ(code % 2 == 0, made->getTypeName().ends_with("[]")) << name;
        EXPECT_EQ(log.texts(), Texts{});
    }
}

TEST_F(BridgeInput, SensorsWithoutLabelFieldOrProcAreDeclinedSilently)
{
    LogCapture log(2);
    EXPECT_EQ(_handler->getSlot(&add("SFFloat", "")), nullptr);
    auto empty = std::make_unique<DirectSensor>();
    EXPECT_EQ(_handler->createUpdateObserver(empty.get()), nullptr);
    EXPECT_EQ(_handler->createOutputUpdateObserver(empty.get()), nullptr);
    empty->setLabel("label");
    empty->setDirectSensorProc(std::make_unique<DirectSensorProc>(nullptr));
    EXPECT_EQ(_handler->createUpdateObserver(empty.get()), nullptr);
    EXPECT_EQ(_handler->createUpdateObserver(nullptr), nullptr);
    EXPECT_EQ(log.texts(), Texts{});
}

namespace {

/// A field that changes what it says it is.
class ShiftingField : public SFFloat {
public:
    int getTypeCode() const override { return _codes.size() > 1 ? takeCode() : _codes.front(); }
    int takeCode() const
    {
        const int code = _codes.front();
        _codes.erase(_codes.begin());
        return code;
    }
    mutable std::vector<int> _codes{9};
};

} // namespace

TEST_F(BridgeInput, TypeCodeIsAskedForEachValue)
{
    auto shifting = std::make_unique<ShiftingField>();
    ShiftingField& changing = *shifting;
    _sensors.push_back(std::make_unique<DirectSensor>(std::move(shifting)));
    DirectSensor& sensor = *_sensors.back();
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
}
