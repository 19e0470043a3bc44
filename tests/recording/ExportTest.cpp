#include "host/recording/RecordText.h"
#include "monitor/codec/Message.h"
#include "monitor/codec/SlotCodec.h"
#include "tests/monitor/AllValues.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace Monitor;

constexpr const char* label = "a \"b\", c";
constexpr std::uint64_t arrival = 1'700'000'000'123'456'789, stamp = 5;

// The fields of one line, as RFC 4180 has them.
std::vector<std::string> fieldsOf(const std::string& line)
{
    std::vector<std::string> fields(1);
    bool isQuoted = false;
    for (std::size_t i = 0; i + 2 < line.size(); ++i) {
        if (line[i] == '"' && isQuoted && line[i + 1] == '"')
            fields.back() += line[++i];
        else if (line[i] == '"')
            isQuoted = !isQuoted;
        else if (line[i] == ',' && !isQuoted)
            fields.emplace_back();
        else
            fields.back() += line[i];
    }
    EXPECT_TRUE(!isQuoted && line.ends_with("\r\n")) << line;
    return fields;
}

std::string csvOf(const SlotCodec& codec, const Bytes& message)
{
    const auto csv = Host::makeCsv();
    csv->add(Mcap::Schema{1, std::string(codec.schemaName()), "ros2msg", codec.schemaText()});
    csv->add(Mcap::Channel{1, 1, label, "cdr", {}});
    return csv->line(Mcap::Message{1, 0, arrival, stamp, message});
}

// JSON has no bytes that are no text, no number that is none, and no pixels.
bool saysAll(const std::string& json)
{
    return json.find("\ufffd") == json.npos && json.find("null") == json.npos && json.find("\"format\"") == json.npos;
}

TEST(Csv, GivesBackEveryValueThatJsonCanSay)
{
    int types = 0;
    Trovio::forEachSlotType([&types]<class T>(Trovio::TypeTag<T>) {
        const SlotCodec& codec = *SlotCodec::find(Trovio::TypeName<T>::getName());
        int same = 0;
        for (const T& value : allValues<T>()) {
            const Bytes message = encoded(value);
            const auto fields = fieldsOf(csvOf(codec, message));
            ASSERT_EQ(fields.size(), 5U);
            EXPECT_EQ(fields[0] + fields[1] + fields[2], std::string("1700000000.1234567890.000000005") + label);
            EXPECT_EQ(fields[3], codec.slotType());
            Bytes back;
            std::string problem;
            if (!saysAll(fields[4]))
                continue;
            EXPECT_TRUE(codec.fromJson(nlohmann::json::parse(fields[4]), back, problem)) << problem;
            EXPECT_EQ(back, message) << fields[3] << ' ' << fields[4];
            ++same;
        }
        types += same > 0 ? 1 : 0;
    });
    EXPECT_EQ(types, 39); // all but images; an empty array of them says all
}

TEST(JsonLines, LeaveOutWhatIsNoValueAndSayWhy)
{
    const auto lines = Host::makeJsonLines();
    lines->add(Mcap::Schema{1, "std_msgs/msg/Float64", "ros2msg", "float64 data\n"});
    lines->add(Mcap::Channel{1, 1, "a", "cdr", {}});
    lines->add(Mcap::Channel{2, 0, "@frames", "json", {}});
    lines->add(Mcap::Channel{3, 0, "b", "protobuf", {}});
    EXPECT_EQ(lines->line({2, 0, 1, 1, Mcap::asBytes("{\"number\":1}")}),
              "{\"label\":\"@frames\",\"time\":0.000000001,\"stamp\":0.000000001,\"value\":{\"number\":1}}\n");
    EXPECT_EQ(lines->line({2, 0, 1, 1, Mcap::asBytes("{\"a\":1}\n{}")}), "");
    const std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
    EXPECT_EQ(lines->line({2, 0, 1, 1, Mcap::asBytes(deep)}), "");
    EXPECT_EQ(lines->line({1, 0, 1, 1, Mcap::asBytes("short")}), "");
    EXPECT_EQ(lines->line({3, 0, 1, 1, {}}), "");
    EXPECT_EQ(lines->unknown(), 4U);
    EXPECT_NE(lines->whyUnknown(), "");
}
} // namespace
