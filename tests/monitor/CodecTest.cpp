#include "explain/ValueJson.h"
#include "host/show/Json.h"
#include "monitor/codec/PlainJson.h"
#include "monitor/codec/SlotCodec.h"
#include "ostrel/FieldClass.h"
#include "sensorManager/Conversions.h"
#include "sensorManager/FieldTypes.h"
#include "tests/monitor/AllValues.h"
#include "trovio/InSlot.h"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <random>
#include <set>

using namespace Monitor;
using namespace Trovio;

namespace {

template <class T>
std::string nameOf(const T& value)
{
    return TypeName<T>::getName() + " in " + std::to_string(encoded(value).size()) + " bytes";
}

/// Whether it can be read; says what is wrong where it must not be.
template <class T>
bool isRead(std::span<const std::byte> message, T& value)
{
    std::string problem;
    const bool read = decode(message, value, problem);
    EXPECT_EQ(read, problem.empty());
    return read;
}

/// Calls visit(value) with values of all 40 types.
template <class Visit>
void forAllValues(Visit visit)
{
    forEachSlotType([&visit]<class T>(TypeTag<T>) {
        for (const T& value : allValues<T>())
            visit(value);
    });
}

std::string jsonOf(std::string_view slotType, std::span<const std::byte> message)
{
    std::string json, problem;
    EXPECT_TRUE(SlotCodec::find(slotType)->toJson(message, json, problem)) << slotType << ": " << problem;
    return json;
}

} // namespace

// A message is made of all bits of a value, and nothing else.
TEST(Codec, ValuesOfAllTypesComeBackBitByBit)
{
    forAllValues([]<class T>(const T& value) {
        T back{};
        ASSERT_TRUE(isRead(encoded(value), back)) << nameOf(value);
        EXPECT_EQ(encoded(back), encoded(value)) << nameOf(value);
        if constexpr (std::is_trivially_copyable_v<T> && !std::is_same_v<T, bool>)
            EXPECT_EQ(std::memcmp(&back, &value, sizeof(T)), 0) << nameOf(value);
        else
            EXPECT_TRUE(Nodes::isSame(back, value) || encoded(value) == encoded(back)) << nameOf(value);
    });
}

// In the form of the other answers, and with no more digits than they need.
TEST(Codec, NumbersAreWrittenAsTheJsonLibraryWritesThem)
{
    std::mt19937 random(1);
    const auto hasExponent = [](const std::string& text) { return text.find('e') != std::string::npos; };
    const auto check = [hasExponent]<class T>(T number, const nlohmann::json& expected) {
        const std::string text = jsonOf(TypeName<T>::getName(), encoded(number)), other = expected.dump();
        EXPECT_LE(text.size(), other.size()) << text << " and " << other;
        EXPECT_EQ(nlohmann::json::parse(text), nlohmann::json::parse(other)) << text;
        EXPECT_EQ(hasExponent(text), hasExponent(other)) << text << " and " << other;
    };
    for (const double number : {0.0, -0.0, 1.0, 1e-4, 9.9e-5, 1e15, 9.9e14, 1e7, 16777217.0, 0.1, 1e300, 5e-324}) {
        check(number, number);
        check(static_cast<float>(number), Explain::valueJson(static_cast<float>(number)));
    }
    for (int i = 0; i < 20'000; ++i) {
        const double number = (static_cast<double>(random()) - 2e9) / (1U << random() % 32);
        check(number, number);
        check(static_cast<float>(number), Explain::valueJson(static_cast<float>(number)));
    }
}

TEST(Codec, MessageThatIsCutAnywhereIsRefused)
{
    forAllValues([]<class T>(const T& value) {
        const Bytes whole = encoded(value);
        for (std::size_t length = 0; length < whole.size(); ++length) {
            T back{};
            // Memory of its own, so that a sanitizer sees what is read behind its end.
            const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            ASSERT_FALSE(isRead(cut, back)) << nameOf(value) << ", cut to " << length;
        }
    });
}

TEST(Codec, LongArraysComeBackEqual)
{
    std::vector<Vec3<float>> values, back;
    for (std::size_t i = 0; i < 100'000; ++i)
        values.push_back(Nodes::sampleElement<Vec3<float>>(i));
    ASSERT_TRUE(isRead(encoded(values), back));
    EXPECT_TRUE(back == values);
}

// What a field would not hold as it comes becomes something that it does.
template <class T>
void fitIntoField(T&)
{
}
void fitIntoField(long& value)
{
    value = static_cast<std::int32_t>(value);
}
void fitIntoField(Image& image)
{
    const auto* const format = Image::findFormat(image.getFormat());
    if (!format->isConvertible() || format->_name.find(' ') != std::string_view::npos || format->_name[0] == 'A')
        image = imageOf(Image::BGR, 3, 2);
}
template <class E>
void fitIntoField(std::vector<E>& values)
{
    if constexpr (!std::is_same_v<E, bool>)
        for (E& value : values)
            fitIntoField(value);
}
template <class T>
void fitIntoField(SmartPtr<T>& value)
{
    fitIntoField(*value);
}

TEST(Codec, JsonIsWhatTheHostShows)
{
    int fields = 0;
    for (const Ostrel::FieldClass& fieldClass : Ostrel::FieldClass::all())
        Ostrel::withFieldType(fieldClass.code(), [&]<class Row>(Row) {
            using T = typename Row::SlotValue;
            ++fields;
            for (T value : allValues<T>()) {
                fitIntoField(value);
                typename Row::FieldType field;
                Ostrel::Conversions::toField(value, field);
                const std::string line = Host::jsonLine({0, {}}, {}, field);
                const std::string shown = line.substr(line.find("\"value\":") + 8);
                EXPECT_EQ(jsonOf(TypeName<T>::getName(), encoded(value)) + "}\n", shown) << nameOf(value);
            }
        });
    EXPECT_EQ(fields, 40);
}

TEST(Codec, JsonBecomesTheMessageThatItCameFrom)
{
    forAllValues([]<class T>(const T& value) {
        const SlotCodec& codec = *SlotCodec::find(TypeName<T>::getName());
        const std::string json = jsonOf(codec.slotType(), encoded(value));
        Bytes back;
        std::string problem;
        if (codec.slotType().starts_with("Image") && json != "[]")
            EXPECT_FALSE(codec.fromJson(nlohmann::json::parse(json), back, problem));
        else
            EXPECT_TRUE(codec.fromJson(nlohmann::json::parse(json), back, problem)) << problem;
        // Not the same number, nor the same bytes, but what JSON can say of them.
        if (!problem.empty())
            return;
        EXPECT_EQ(jsonOf(codec.slotType(), back), json);
        const bool isExact = json.find("null") == std::string::npos && json.find("\uFFFD") == std::string::npos;
        EXPECT_EQ(back == encoded(value) || !isExact, true) << json;
    });
}

TEST(Codec, MessagesInJsonAreTheirValues)
{
    const struct {
        const char *_message, *_value;
    } rows[] = {{R"({"data":"text"})", R"("text")"},
                {R"({"z":3,"x":1,"y":2})", "[1,2,3]"},
                {R"({"a":4,"r":1,"g":2,"b":3})", "[1,2,3,4]"},
                {R"({"values":[{"x":1,"y":2},{"y":4,"x":3}]})", "[[1,2],[3,4]]"},
                {R"({"x":1,"unit":"m"})", R"({"unit":"m","x":1})"},
                {"[1,null]", "[1,null]"},
                {"{}", "{}"}};
    for (const auto& row : rows)
        EXPECT_EQ(plainJson(nlohmann::json::parse(row._message)), nlohmann::json::parse(row._value));
}

TEST(Codec, JsonThatIsNoValueIsRefusedWithItsPlace)
{
    const struct {
        const char *_type, *_json, *_problem;
    } rows[] = {
        {"Bool", "1", "value: found 1; a value of type Bool is true or false"},
        {"Float", "1e39", "value: found 1e+39; a value of type Float is a number, or null for what is none"},
        {"Long", "9223372036854775808",
         "value: found 9223372036854775808; a value of type Long is a whole number of 64 bits"},
        {"Long", "1.0", "value: found 1.0; a value of type Long is a whole number of 64 bits"},
        {"String", "{}", "value: found an object; a value of type String is a text"},
        {"Vec3f", "[1, 2]", "value: found a list of 2; a value of type Vec3f is a list of 3 numbers"},
        {"Vec3f", "[1, 2, \"\\u001b\"]",
         "value[2]: found the text '\\x1b'; a value of type Vec3f is a list of 3 numbers"},
        {"Vec2d[]", "[[1, 2], [3, true]]",
         "value[1][1]: found true; a value of type Vec2d[] is a list, and each element of it a list of 2 numbers"},
        {"Image", "null",
         "value: found null; a value of type Image is not to be had from JSON, which has no pixels; send it as CDR"},
    };
    for (const auto& row : rows) {
        Bytes message;
        std::string problem;
        EXPECT_FALSE(SlotCodec::find(row._type)->fromJson(nlohmann::json::parse(row._json), message, problem));
        EXPECT_EQ(problem, row._problem);
    }
}

namespace {

/// A message that anybody might send as an image.
Bytes imageMessage(std::uint32_t width, std::uint32_t height, const char* encoding, std::uint8_t bigEndian,
                   std::uint32_t step, std::size_t bytes)
{
    Bytes message;
    CdrWriter out(message);
    out.put(std::int32_t(0));
    out.put(std::uint32_t(0));
    out.putText("camera");
    out.put(height);
    out.put(width);
    out.putText(encoding);
    out.put(bigEndian);
    out.put(step);
    out.putCount(bytes);
    for (std::size_t i = 0; i < bytes; ++i)
        out.put(static_cast<std::uint8_t>(i));
    return message;
}

Bytes bytesOf(std::initializer_list<int> bytes)
{
    Bytes message;
    for (const int byte : bytes)
        message.push_back(std::byte(byte));
    return message;
}

} // namespace

TEST(Codec, MessageThatIsNoneIsRefusedWithItsPlace)
{
    const struct {
        const char* _type;
        Bytes _message;
        const char* _problem; // part of it
    } rows[] = {
        {"Bool", {}, "begins with nothing"},
        {"Bool", bytesOf({0, 0, 0, 0, 1}), "begins with 00 00 00 00; it must be plain little-endian CDR"},
        {"Bool", bytesOf({0, 7, 0, 0, 1}), "begins with 00 07 00 00"},
        {"Double", bytesOf({0, 1, 0, 0, 1}), "at byte 0 behind its head 1 bytes are left for 1 numbers of 8 bytes"},
        {"String", bytesOf({0, 1, 0, 0, 1, 0, 0, 0, 65}), "no zero byte at its end"},
        {"Bool[]", bytesOf({0, 1, 0, 0, 255, 255, 255, 255}),
         "announces 4294967295 elements of at least 1 bytes, but 0"},
        {"Vec2d[]", bytesOf({0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
         "at byte 8 behind its head 12 bytes are left for 2 numbers of 8 bytes"},
        {"Image", imageMessage(2, 1, "yuv422", 0, 4, 4), "encoding 'yuv422' is none of none at all, bgr8"},
        {"Image", imageMessage(2, 1, "mono16", 1, 4, 4), "high byte first (is_bigendian 1); only 0 is taken"},
        {"Image", imageMessage(2, 2, "rgb8", 0, 5, 10), "10 bytes of pixels in rows of 5; a row takes at least 6"},
        {"Image", imageMessage(2, 2, "rgb8", 0, 6, 11), "11 bytes of pixels in rows of 6"},
        {"Image", imageMessage(4'000'000'000, 4'000'000'000, "bgra8", 0, 0, 0), "is too large"},
        {"Image", imageMessage(65536, 65536, "", 0, 1, 0), "0 bytes of pixels in rows of 1"},
    };
    for (const auto& row : rows) {
        std::string json, problem;
        EXPECT_FALSE(SlotCodec::find(row._type)->toJson(row._message, json, problem)) << row._problem;
        EXPECT_NE(problem.find(row._problem), std::string::npos) << problem;
    }
}

TEST(Codec, ImageWithGapsBetweenItsRowsLosesThem)
{
    SharedImage image;
    ASSERT_TRUE(isRead(imageMessage(1, 2, "rgb8", 0, 4, 8), image));
    const std::vector<std::uint8_t> pixels(image->getData(), image->getData() + image->getDataSize());
    EXPECT_EQ(pixels, (std::vector<std::uint8_t>{0, 1, 2, 4, 5, 6}));
}

TEST(Codec, SourcePushesWhatItCanRead)
{
    const auto source = SlotCodec::find("Vec2f[]")->makeSource("out");
    InSlot<SharedVector<Vec2<float>>> in("in");
    source->slot().connect(&in);
    SharedVector<Vec2<float>> value;
    *value = {{1, 2}, {3, 4}};
    std::string problem;
    EXPECT_TRUE(source->write(encoded(value), Time(7), problem)) << problem;
    const auto record = in.pop();
    EXPECT_TRUE(*record.getValue() == *value);
    EXPECT_EQ(record.getTimeStamp(), Time(7));
    EXPECT_FALSE(source->write(encoded(true), Time(8), problem));
    EXPECT_TRUE(in.empty());
    source->slot().disconnect(&in);
}

TEST(Codec, EachTypeHasASchemaOfItsOwn)
{
    std::set<std::string_view> names;
    for (const SlotCodec* codec : SlotCodec::all())
        names.insert(codec->schemaName());
    EXPECT_EQ(names.size(), 40U);
    EXPECT_EQ(SlotCodec::find("Plane"), nullptr);
    EXPECT_EQ(SlotCodec::find("Vec3f[]")->schemaText(),
              "geometry_msgs/Point32[] values\n" + std::string(80, '=') +
                  "\nMSG: geometry_msgs/Point32\nfloat32 x\nfloat32 y\nfloat32 z\n");
}

// What one type's row in the page has to be; the message of its array stands in the same row.
static std::string documentedRow(const SlotCodec& codec)
{
    const SlotCodec& array = *SlotCodec::find(std::string(codec.slotType()) + "[]");
    const auto fieldsOf = [](const SlotCodec& one) {
        std::string fields = one.schemaText().substr(0, one.schemaText().find("\n==="));
        fields.erase(fields.find_last_not_of('\n') + 1);
        for (std::size_t at = 0; (at = fields.find('\n', at)) != std::string::npos;)
            fields.replace(at, 1, "; ");
        return "`" + fields + "`";
    };
    const std::string_view arrayName = array.schemaName().substr(array.schemaName().rfind('/') + 1);
    return "| `" + std::string(codec.slotType()) + "` | `" + std::string(codec.schemaName()) + "` | " +
           fieldsOf(codec) + " | `" + std::string(arrayName) + "`: " + fieldsOf(array) + " |\n";
}

TEST(Codec, PageHasTheMessageOfEachType)
{
    std::ifstream file(PROJECT_FOLDER "/docs/messages.md");
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    for (const SlotCodec* codec : SlotCodec::all()) {
        if (codec->slotType().ends_with("[]"))
            continue;
        EXPECT_NE(page.find(documentedRow(*codec)), std::string::npos) << documentedRow(*codec);
    }
}
