#include "host/recording/Contents.h"

#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "host/recording/Progress.h"
#include "monitor/mcap/format/FileTime.h"
#include "trovio/messages/TimeText.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {

using Explain::escaped;
using namespace Monitor::Mcap;

namespace {

using Verdict = FileState::Verdict;

std::string dateOf(std::uint64_t fileTime)
{
    return Trovio::dateOf(Trovio::Time(secondsOf(fileTime)));
}

double lengthOf(const TimeSpan& times)
{
    return secondsOf(times._end - times._start);
}

// 1234567 as 1205.6 KiB
std::string sizeText(std::uint64_t bytes)
{
    char text[32];
    if (bytes < 10'240)
        std::snprintf(text, sizeof text, "%llu bytes", static_cast<unsigned long long>(bytes));
    else if (bytes < 10'485'760)
        std::snprintf(text, sizeof text, "%.1f KiB", static_cast<double>(bytes) / 1024);
    else
        std::snprintf(text, sizeof text, "%.1f MiB", static_cast<double>(bytes) / 1'048'576);
    return text;
}

std::string channelLine(const Monitor::RecordedChannel& channel)
{
    char numbers[80];
    const double seconds = lengthOf(channel._times);
    const double rate = seconds > 0 ? static_cast<double>(channel._messages - 1) / seconds : 0;
    std::snprintf(numbers, sizeof numbers, "%10llu messages %8.1f/s  ",
                  static_cast<unsigned long long>(channel._messages), rate);
    return numbers + escaped(channel._topic) + "  " +
           escaped(channel._schema.empty() ? channel._encoding : channel._schema) + '\n';
}

const char* nameOf(Verdict verdict)
{
    return verdict == Verdict::Whole     ? "whole"
           : verdict == Verdict::Cut     ? "cut"
           : verdict == Verdict::Damaged ? "damaged"
                                         : "foreign";
}

Monitor::RecordedFile readShown(const std::string& path)
{
    Progress progress("reading");
    return Monitor::readRecordedFile(*InputFile::open(path), [&progress](std::uint64_t read, std::uint64_t size) {
        progress.show(read, size);
        return true;
    });
}

TimeSpan timesOf(const Monitor::RecordedFile& found)
{
    TimeSpan times;
    for (const Monitor::RecordedChannel& channel : found._channels)
        times.add(channel._times);
    return times;
}
} // namespace

Contents::Contents(const std::string& path) : _path(path), _found(readShown(path)), _times(timesOf(_found)) {}

std::string Contents::verdict() const
{
    const FileState& state = _found._state;
    const bool isBeingWritten = _found._isBeingWritten;
    const std::string where = state._problem.empty() ? "" : " (" + state._problem + ")";
    switch (state._verdict) {
    case Verdict::Whole:
        if (isBeingWritten)
            return "whole so far, being written";
        return state._indexed ? "whole"
                              : "whole, without a summary, so readers by index refuse it; 'recording finish' adds it";
    case Verdict::Cut:
        return isBeingWritten ? "being written" + where
                              : "cut off" + where +
                                    "; what was confirmed is there. Readers by index refuse it; "
                                    "'recording finish' gives it an end";
    case Verdict::Damaged:
        return "damaged" + where + ", " + sizeText(state._lost) +
               " skipped; 'recording export --format mcap' saves what can be read";
    default:
        return "no recording" + where;
    }
}

// Bounds of clocks are noted in seconds.
std::string Contents::factLines() const
{
    std::string lines;
    for (const auto& [name, values] : _found._facts)
        for (const auto& [key, value] : values)
            lines += escaped(name) + ' ' + escaped(key) + ": " + escaped(value) +
                     (name == "clock" && key == "error" ? " s\n" : "\n");
    return lines;
}

std::string Contents::text() const
{
    std::string text = escaped(_path) + ": " + verdict() + '\n';
    if (!_found._library.empty())
        text += "written by " + escaped(_found._library) + '\n';
    text += factLines() + sizeText(state()._size) + ", messages " + std::to_string(messages());
    if (!_times._empty)
        text += ", " + dateOf(_times._start) + " to " + dateOf(_times._end) + " (" +
                Trovio::inSeconds(lengthOf(_times)) + ")";
    text += '\n';
    for (const Monitor::RecordedChannel& channel : _found._channels)
        text += channelLine(channel);
    if (_found._notKept > 0)
        text += "not kept, for the disk or the reader was too slow: records " + std::to_string(_found._notKept) + '\n';
    for (const Monitor::RecordedAttachment& attached : _found._attached)
        text += "attached: " + escaped(attached._name) + ", " + escaped(attached._mediaType) + ", " +
                sizeText(attached._size) + '\n';
    return text;
}

std::string Contents::json() const
{
    nlohmann::json channels = nlohmann::json::array();
    for (const Monitor::RecordedChannel& channel : _found._channels)
        channels.push_back({{"label", channel._topic},
                            {"schema", channel._schema},
                            {"encoding", channel._encoding},
                            {"messages", channel._messages},
                            {"bytes", channel._bytes}});
    nlohmann::json attached = nlohmann::json::array();
    for (const Monitor::RecordedAttachment& one : _found._attached)
        attached.push_back({{"name", one._name}, {"type", one._mediaType}, {"bytes", one._size}});
    const nlohmann::json all = {{"file", _path},
                                {"state", nameOf(state()._verdict)},
                                {"problem", state()._problem},
                                {"beingWritten", _found._isBeingWritten},
                                {"indexed", state()._indexed},
                                {"bytes", state()._size},
                                {"messages", messages()},
                                {"notKept", _found._notKept},
                                {"from", secondsOf(_times._start)},
                                {"to", secondsOf(_times._end)},
                                {"slots", std::move(channels)},
                                {"attached", std::move(attached)},
                                {"facts", _found._facts}};
    return Explain::jsonText(all) + '\n';
}
} // namespace Host
