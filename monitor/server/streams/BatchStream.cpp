#include "monitor/server/streams/BatchStream.h"

#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "monitor/codec/ClientJson.h"
#include "monitor/codec/JsonNumber.h"
#include "monitor/server/streams/RecordText.h"

namespace Monitor {
namespace {

constexpr std::size_t maxReused = 64 * 1024; // bytes
constexpr const char* batchBegin = "{\"op\":\"batch\",\"records\":[";
} // namespace

// A client that does not even take words is sent away.
void BatchStream::say(const nlohmann::json& object)
{
    if (!queue().putWords(Explain::jsonText(object)))
        queue().finish();
}

void BatchStream::received(std::string_view message, bool isBinary)
{
    const auto object = isBinary ? std::nullopt : readObject(message);
    const std::string op = object ? textAt(*object, "op").value_or("") : "";
    const nlohmann::json* const labels = object ? listAt(*object, "labels") : nullptr;
    if (op == "subscribe" && labels)
        subscribe(*labels);
    else if (op == "unsubscribe" && labels)
        unsubscribe(*labels);
    else if (op == "pace")
        setPace(*object);
    else
        say({{"op", "error"},
             {"message", "no message of " + std::string(Name) +
                             "; allowed: {\"op\":\"subscribe\",\"labels\":[…]}, \"unsubscribe\", and "
                             "{\"op\":\"pace\",\"milliseconds\":50}"}});
}

void BatchStream::setPace(const nlohmann::json& object)
{
    const auto asked = object.find("milliseconds");
    const auto number = asked == object.end() ? std::nullopt : numberIn(*asked);
    if (!number || *number < FastestPace.count() || *number > SlowestPace.count())
        return say(
            {{"op", "error"},
             {"message", (asked == object.end()
                              ? std::string("a pace without milliseconds")
                              : "a pace of " + Explain::escaped(Explain::jsonText(*asked), 40) + " milliseconds") +
                             "; allowed: whole numbers from " + std::to_string(FastestPace.count()) + " to " +
                             std::to_string(SlowestPace.count())}});
    _pace = std::chrono::milliseconds(*number);
}

void BatchStream::subscribe(const nlohmann::json& labels)
{
    nlohmann::json slots = nlohmann::json::array();
    for (const nlohmann::json& entry : labels) {
        const std::string label = entry.is_string() ? entry.get<std::string>() : "";
        if (_numbers.contains(label))
            continue;
        _numbers[label] = ++_last; // its newest record may come at once
        if (_watches.add(label, *this, _last)) {
            slots.push_back({{"id", _last}, {"label", label}});
            continue;
        }
        _numbers.erase(label);
        say({{"op", "error"}, {"label", label}, {"message", TapSet::whyNot(label)}});
    }
    say({{"op", "subscribed"}, {"slots", slots}});
    endRound();
}

void BatchStream::unsubscribe(const nlohmann::json& labels)
{
    for (const nlohmann::json& entry : labels)
        if (entry.is_string() && _numbers.erase(entry.get<std::string>()) > 0)
            _watches.remove(entry.get<std::string>(), *this);
}

void BatchStream::take(const SeenRecord& seen)
{
    const bool isFirst = isEmpty();
    _text = isFirst ? batchBegin : ",";
    _text += '[';
    appendJson(_text, long{seen._number});
    _text += ',';
    appendSeconds(_text, seen._record._arrival);
    _text += ',';
    appendStamp(_text, seen._record._stamp);
    _text += ',';
    appendValue(_text, seen._codec, seen._record);
    _text += ']';
    if (!add(_text))
        ++_gaps[seen._number];
    else if (isFirst)
        makeGapsDue();
    if (_text.capacity() > maxReused)
        std::string().swap(_text);
}

void BatchStream::miss(std::uint32_t number, std::uint64_t records)
{
    queue().drop(records);
    _gaps[number] += records;
}

std::string BatchStream::batchEnd() const
{
    return ",\"dropped\":" + std::to_string(queue().dropped()) + "}";
}

void BatchStream::makeGapsDue()
{
    for (const auto& [number, records] : _gaps)
        _due[number] += records;
    _gaps.clear();
}

// As words, which have room where records have none.
void BatchStream::tellGaps()
{
    std::string gaps;
    for (const auto& [number, records] : _due)
        gaps += (gaps.empty() ? "[" : ",[") + std::to_string(number) + "," + std::to_string(records) + "]";
    if (!gaps.empty() && queue().putWords(batchBegin + ("],\"gaps\":[" + gaps + "]") + batchEnd()))
        _due.clear();
}

// What went missing after the first record of the round waits: a slot's newest records are those that find no room.
void BatchStream::endRound()
{
    if (isEmpty() && !queue().empty())
        return;
    if (isEmpty())
        makeGapsDue();
    tellGaps();
    if (isEmpty())
        return;
    OutMessage round = takeRound();
    round._bytes += "]" + batchEnd();
    queue().putRecords(std::move(round));
}
} // namespace Monitor
