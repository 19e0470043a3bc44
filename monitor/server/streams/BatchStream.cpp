#include "monitor/server/streams/BatchStream.h"

#include "explain/text/JsonText.h"
#include "monitor/codec/ClientJson.h"
#include "monitor/server/streams/RecordText.h"

namespace Monitor {

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
    else
        say({{"op", "error"},
             {"message", "no message of " + std::string(Name) +
                             "; allowed: {\"op\":\"subscribe\",\"labels\":[…]} and \"unsubscribe\""}});
}

void BatchStream::subscribe(const nlohmann::json& labels)
{
    nlohmann::json slots = nlohmann::json::array();
    for (const nlohmann::json& entry : labels) {
        const std::string label = entry.is_string() ? entry.get<std::string>() : "";
        if (_numbers.contains(label))
            continue;
        _numbers[label] = ++_last; // its newest record may come at once
        if (_watches.add(label, *this)) {
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

void BatchStream::take(const std::string& label, const SlotCodec& codec, const TapRecord& record)
{
    const auto number = _numbers.find(label);
    if (number == _numbers.end())
        return;
    const bool isFirst = isEmpty();
    if (!add((isFirst ? "[" : ",[") + std::to_string(number->second) + "," + secondsText(record._arrival) + "," +
             stampText(record._stamp) + "," + valueText(codec, record) + "]"))
        ++_gaps[number->second];
    else if (isFirst)
        makeGapsDue();
}

void BatchStream::miss(const std::string& label, std::uint64_t records)
{
    queue().drop(records);
    if (const auto number = _numbers.find(label); number != _numbers.end())
        _gaps[number->second] += records;
}

std::string BatchStream::batchText(const std::string& records, const std::string& gaps) const
{
    return "{\"op\":\"batch\",\"records\":[" + records + "]" + (gaps.empty() ? "" : ",\"gaps\":[" + gaps + "]") +
           ",\"dropped\":" + std::to_string(queue().dropped()) + "}";
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
    if (!gaps.empty() && queue().putWords(batchText({}, gaps)))
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
    OutMessage round = takeRound();
    if (round._records == 0)
        return;
    round._bytes = batchText(round._bytes);
    queue().putRecords(std::move(round));
}
} // namespace Monitor
