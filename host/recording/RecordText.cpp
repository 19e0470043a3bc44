#include "host/recording/RecordText.h"

#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "monitor/codec/SlotCodec.h"
#include "monitor/replay/RecordedFile.h"

#include <cinttypes>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {

using namespace Monitor::Mcap;

namespace {

std::string secondsText(std::uint64_t nanoseconds)
{
    char text[40];
    std::snprintf(text, sizeof text, "%" PRIu64 ".%09" PRIu64, nanoseconds / 1'000'000'000,
                  nanoseconds % 1'000'000'000);
    return text;
}

constexpr std::size_t maxJson = 16UL * 1024 * 1024; // bytes of a message
constexpr int maxDepth = 64;                        // levels; who writes a value goes down as deep on the stack

// Empty where it is no JSON.
std::string oneLine(std::string_view json)
{
    bool isTooDeep = json.size() > maxJson;
    const auto keep = [&isTooDeep](int depth, nlohmann::json::parse_event_t, nlohmann::json&) {
        isTooDeep = isTooDeep || depth > maxDepth;
        return !isTooDeep;
    };
    const auto value = nlohmann::json::parse(isTooDeep ? "" : json, keep, false);
    return value.is_discarded() || isTooDeep ? std::string() : Explain::jsonText(value);
}

class Csv final : public RecordText {
public:
    std::string head() const override { return "time,stamp,label,type,value\r\n"; }

private:
    std::string line(const Topic& topic, const Message& message, const std::string& value) const override
    {
        return secondsText(message._logTime) + ',' + secondsText(message._publishTime) + ',' + quoted(topic._label) +
               ',' + quoted(topic._type) + ',' + quoted(value) + "\r\n";
    }

    static std::string quoted(const std::string& text)
    {
        if (text.find_first_of(",\"\r\n") == std::string::npos)
            return text;
        std::string result = "\"";
        for (const char character : text)
            result.append(character == '"' ? 2 : 1, character);
        return result + '"';
    }
};

class JsonLines final : public RecordText {
    std::string line(const Topic& topic, const Message& message, const std::string& value) const override
    {
        return "{\"label\":" + Explain::jsonText(nlohmann::json(topic._label)) +
               ",\"time\":" + secondsText(message._logTime) + ",\"stamp\":" + secondsText(message._publishTime) +
               ",\"value\":" + value + "}\n";
    }
};
} // namespace

void RecordText::add(const Channel& channel)
{
    Topic& topic = _topics[channel._id];
    topic._label = channel._topic;
    topic._type = channel._encoding;
    if (channel._encoding != "cdr")
        return;
    const std::string& schema = _schemas[channel._schema];
    topic._codec = Monitor::codecOfSchema(schema);
    topic._type = topic._codec ? topic._codec->slotType() : schema;
}

std::string RecordText::line(const Message& message)
{
    const Topic& topic = _topics[message._channel];
    std::string value, problem = Explain::inQuotes(topic._type) +
                                 " is no type of a slot, or the message no JSON that is short and flat enough";
    if (topic._type == "json")
        value = oneLine(asText(message._data));
    else if (topic._codec && !topic._codec->toJson(message._data, value, problem))
        value.clear();
    if (!value.empty())
        return line(topic, message, value);
    if (++_unknown == 1)
        _whyUnknown = Explain::inQuotes(topic._label) + ": " + problem;
    return {};
}

std::unique_ptr<RecordText> makeCsv()
{
    return std::make_unique<Csv>();
}

std::unique_ptr<RecordText> makeJsonLines()
{
    return std::make_unique<JsonLines>();
}
} // namespace Host
