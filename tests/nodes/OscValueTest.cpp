#include "nodes/osc/packet/OscValue.h"
#include "nodes/osc/OscMethod.h"
#include "nodes/osc/OscSender.h"
#include "nodes/osc/packet/OscPacket.h"
#include "nodes/osc/packet/OscTags.h"
#include "tests/nodes/OscMessages.h"
#include "tests/nodes/SampleValues.h"
#include "trovio/InSlot.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace Trovio::Nodes {
namespace {

using namespace std::string_literals;

/// The value that arrives when a method of type T gets the packet; nothing if it refuses the message.
template <class T>
std::optional<T> received(Bytes packet)
{
    struct Receiver final : OscMessageVisitor {
        void visit(const OscMessage& message) override { _delivered = _method.deliver(message) == OscFit::Fits; }
        OscMethod _method{{"/a", TypeName<T>::getName()}};
        bool _delivered = false;
    } receiver;
    InSlot<T> slot("");
    slot.connect(receiver._method.getSlots().at(0));
    EXPECT_EQ(readOscPacket(packet, Time(1.0), receiver), std::nullopt);
    slot.disconnect(receiver._method.getSlots().at(0));
    EXPECT_EQ(receiver._delivered, !slot.empty());
    return receiver._delivered ? std::optional(slot.pop().getValue()) : std::nullopt;
}

TEST(OscValue, EveryNumberTagFeedsEveryNumericType)
{
    forEachSlotType([]<class T>(TypeTag<T>) {
        if constexpr (Numeric<T>) {
            using Access = Components<T>;
            std::vector<double> numbers;
            for (std::size_t i = 0; i < Access::Count; ++i)
                numbers.push_back(static_cast<double>(i + 1));
            for (const char tag : {'i', 'h', 'f', 'd'}) {
                const auto value = received<T>(numbersMessage("/a", tag, numbers));
                ASSERT_TRUE(value) << TypeName<T>::getName() << " from " << tag;
                for (std::size_t i = 0; i < Access::Count; ++i)
                    EXPECT_EQ(Access::get(*value, i), static_cast<typename Access::Component>(numbers[i]));
            }
        }
    });
}

TEST(OscValue, TheTypeThatIsGuessedFromTheTagsTakesTheMessage)
{
    std::istringstream rows("f Float i Long h Long d Double T Bool I Bool N Bool FFN Bool[] s String S String b String "
                            "sss String[] t Time tt Time[] r ColorRGBA ff Vec2f [fff] Vec3f iii Vec3d fffd Vec4d "
                            "fffff Float[] iiiii Long[] fiiii Double[] fffffffff Matrix3f iiib Image "
                            "dddddddddddddddd Matrix4d rr ColorRGBA[]");
    for (std::string tags, type; rows >> tags >> type;) {
        EXPECT_EQ(guessSlotType(tags), type) << tags;
        const std::vector<std::uint8_t> zeros(256);
        std::size_t size = 0;
        for (const char tag : tags)
            size += std::string_view("hdt").find(tag) != std::string_view::npos      ? 8
                    : std::string_view("TFIN[]").find(tag) != std::string_view::npos ? 0
                                                                                     : 4;
        OscMethod method({"/a", type});
        EXPECT_EQ(method.deliver({"/a", tags, Bytes(zeros).first(size), Time(1.0)}), OscFit::Fits) << tags;
    }
    for (const char* tags : {"", "[]", "m", "fs", "Tf"})
        EXPECT_EQ(guessSlotType(tags), "") << tags;
}

TEST(OscValue, InfinitumIsTrueAndNilIsFalse)
{
    EXPECT_EQ(received<bool>(raw("/a\0\0,I\0\0"s)), true);
    EXPECT_EQ(received<bool>(raw("/a\0\0,N\0\0"s)), false);
    EXPECT_FALSE(received<float>(raw("/a\0\0,I\0\0"s)));
}

TEST(OscValue, OtherCountsAndKindsAreRefused)
{
    const LoMessage text = newLoMessage(), truth = newLoMessage();
    lo_message_add_string(text.get(), "1");
    lo_message_add_true(truth.get());
    forEachSlotType([&]<class T>(TypeTag<T>) {
        if constexpr (Numeric<T>) {
            const std::vector<double> tooMany(Components<T>::Count + 1, 1.0);
            const std::vector<double> tooFew(Components<T>::Count - 1, 1.0);
            EXPECT_FALSE(received<T>(numbersMessage("/a", 'f', tooMany))) << TypeName<T>::getName();
            EXPECT_FALSE(received<T>(numbersMessage("/a", 'f', tooFew))) << TypeName<T>::getName();
            EXPECT_FALSE(received<T>(serialised(text, "/a"))) << TypeName<T>::getName();
            EXPECT_EQ(received<T>(serialised(truth, "/a")).has_value(), (std::is_same_v<T, bool>));
        }
    });
    EXPECT_FALSE(received<std::string>(numbersMessage("/a", 'i', {1})));
    EXPECT_FALSE(received<SharedVector<Vec3<float>>>(numbersMessage("/a", 'f', {1, 2, 3, 4})));
    EXPECT_FALSE(received<SharedVector<std::string>>(serialised(truth, "/a")));
}

TEST(OscValue, NumbersThatDoNotFitAreHeldAtTheEnds)
{
    constexpr long lowest = std::numeric_limits<long>::min(), highest = std::numeric_limits<long>::max();
    const double infinity = std::numeric_limits<double>::infinity();
    using Row = std::pair<double, long>;
    for (const auto& [number, expected] :
         {Row(2.9, 2), Row(-2.9, -2), Row(1e300, highest), Row(-1e300, lowest), Row(infinity, highest),
          Row(0x1p63, highest), Row(-0x1p63, lowest), Row(std::nan(""), 0)})
        for (const char tag : {'f', 'd'})
            EXPECT_EQ(received<long>(numbersMessage("/a", tag, {number})), expected) << number << tag;
    EXPECT_EQ(received<float>(numbersMessage("/a", 'd', {1e300})), std::numeric_limits<float>::infinity());
    EXPECT_EQ(received<bool>(numbersMessage("/a", 'd', {0.0})), false);
    EXPECT_EQ(received<bool>(numbersMessage("/a", 'f', {0.25})), true);
}

TEST(OscValue, ColoursAndTimesHaveArgumentsOfTheirOwn)
{
    using namespace std::string_literals;
    const Packet colour = raw("/a\0\0,r\0\0\xff\0\x33\x66"s);
    EXPECT_EQ(received<Color>(colour), Color(1.0F, 0.0F, 0.2F));
    EXPECT_EQ(received<ColorRGBA>(colour), ColorRGBA(1.0F, 0.0F, 0.2F, 0.4F));
    EXPECT_FALSE(received<float>(colour));
    const auto colours = received<SharedVector<Color>>(raw("/a\0\0,[r][r]\0\xff\0\0\0\0\xff\0\0"s));
    ASSERT_TRUE(colours);
    EXPECT_EQ(**colours, (std::vector{Color(1, 0, 0), Color(0, 1, 0)}));

    const LoMessage time = newLoMessage();
    lo_message_add_timetag(time.get(), {2'208'988'800U + 1'600'000'000U, 0x80000000U});
    EXPECT_EQ(received<Time>(serialised(time, "/a")), Time(1'600'000'000.5));
    EXPECT_FALSE(received<double>(serialised(time, "/a")));
}

TEST(OscValue, ImagesWhoseNumbersDoNotFitTheirPixelsAreRefused)
{
    struct Row {
        std::int32_t _width, _height, _format;
        std::size_t _bytes;
    };
    const std::vector<std::uint8_t> pixels(100);
    for (const auto& [width, height, format, bytes] :
         {Row{2, 2, Image::RGB, 11}, Row{2, 2, Image::RGB, 13}, Row{2, 2, 3, 12}, Row{-2, -2, Image::RGB, 12},
          Row{2, 2, -1, 12}, Row{65537, 0, Image::RGB, 0}, Row{65536, 65536, Image::RGBA, 0}}) {
        OscWriter writer;
        writer.begin("/a");
        for (const std::int32_t number : {width, height, format})
            writer.addInt32(number);
        writer.addBlob(Bytes(pixels).first(bytes));
        EXPECT_FALSE(received<SharedImage>(writer.finish())) << width << " x " << height << " format " << format;
    }
}

TEST(OscValue, WhatGoesOutComesBackEqual)
{
    forEachSlotType([]<class T>(TypeTag<T>) {
        Counter replaced("");
        OscSender out({"/a", TypeName<T>::getName()}, {4, Gathering::All, replaced, [] {}});
        OutSlot<T> source("");
        source.connect(out.getSlots().at(0));
        OscWriter writer;
        for (const T& sample : sampleValues<T>()) {
            source.push(Data<T>(sample, Time(3.0)));
            ASSERT_EQ(out.take(writer, 0.0), Time(3.0));
            Packet packet(writer.finish().begin(), writer.finish().end());
            const auto back = received<T>(packet);
            ASSERT_TRUE(back) << TypeName<T>::getName();
            EXPECT_TRUE(isSame(*back, sample)) << TypeName<T>::getName();
            // Another implementation understands it, too.
            const LoMessage other(lo_message_deserialise(packet.data(), packet.size(), nullptr), &lo_message_free);
            EXPECT_TRUE(other) << TypeName<T>::getName();
        }
        EXPECT_EQ(out.take(writer, 0.0), std::nullopt);
        source.disconnect(out.getSlots().at(0));
    });
}

} // namespace
} // namespace Trovio::Nodes
