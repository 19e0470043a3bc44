#include "host/recording/Contents.h"

#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "monitor/codec/SlotCodec.h"
#include "monitor/mcap/format/FileTime.h"
#include "trovio/messages/TimeText.h"

#include <algorithm>
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

std::string topicLine(const Contents::Topic& topic)
{
    char numbers[80];
    const double seconds = lengthOf(topic._times);
    const double rate = seconds > 0 ? static_cast<double>(topic._messages - 1) / seconds : 0;
    std::snprintf(numbers, sizeof numbers, "%10llu messages %8.1f/s  ",
                  static_cast<unsigned long long>(topic._messages), rate);
    return numbers + escaped(topic._channel._topic) + "  " +
           escaped(topic._schema.empty() ? topic._channel._encoding : topic._schema) + '\n';
}

const char* nameOf(Verdict verdict)
{
    return verdict == Verdict::Whole     ? "whole"
           : verdict == Verdict::Cut     ? "cut"
           : verdict == Verdict::Damaged ? "damaged"
                                         : "foreign";
}
} // namespace

const Monitor::SlotCodec* codecFor(const std::string& schemaName)
{
    const auto all = Monitor::SlotCodec::all();
    const auto codec = std::ranges::find(all, schemaName, &Monitor::SlotCodec::schemaName);
    return codec == all.end() ? nullptr : *codec;
}

Contents::Contents(const std::string& path) : _path(path)
{
    const auto file = InputFile::open(path);
    _isBeingWritten = file->isBeingWritten();
    _state = Reader(*file, *this).read();
}

void Contents::header(std::string_view, std::string_view library)
{
    _library = library;
}

void Contents::schema(const Schema& schema)
{
    _schemas[schema._id] = schema._name;
}

void Contents::channel(const Channel& channel)
{
    _topics[channel._id] = {channel, _schemas[channel._schema], 0, 0, {}};
    if (channel._topic == "@gaps")
        _gapsChannel = channel._id;
}

void Contents::message(const Message& message)
{
    Topic& topic = _topics[message._channel];
    ++topic._messages;
    topic._bytes += message._data.size();
    topic._times.add(message._logTime);
    ++_messages;
    _times.add(message._logTime);
    if (message._channel == _gapsChannel && _gapsChannel != 0)
        countGap(asText(message._data));
}

void Contents::countGap(std::string_view json)
{
    const auto gap = nlohmann::json::parse(json, nullptr, false);
    if (gap.is_object() && gap.contains("notKept") && gap["notKept"].is_number_unsigned())
        _notKept += gap["notKept"].get<std::uint64_t>();
}

void Contents::attachment(const Attachment& attachment, std::uint64_t, std::uint64_t)
{
    _attached.push_back({attachment._name, attachment._mediaType, attachment._data.size()});
}

void Contents::metadata(const Metadata& metadata, std::uint64_t, std::uint64_t)
{
    if (metadata._name == "host" || metadata._name == "clock")
        _facts[metadata._name] = metadata._values;
}

bool Contents::goOn(std::uint64_t read, std::uint64_t size)
{
    _progress.show(read, size);
    return true;
}

std::string Contents::verdict() const
{
    const std::string where = _state._problem.empty() ? "" : " (" + _state._problem + ")";
    switch (_state._verdict) {
    case Verdict::Whole:
        if (_isBeingWritten)
            return "whole so far, being written";
        return _state._indexed ? "whole"
                               : "whole, without a summary, so readers by index refuse it; 'recording finish' adds it";
    case Verdict::Cut:
        return _isBeingWritten ? "being written" + where
                               : "cut off" + where +
                                     "; what was confirmed is there. Readers by index refuse it; "
                                     "'recording finish' gives it an end";
    case Verdict::Damaged:
        return "damaged" + where + ", " + sizeText(_state._lost) +
               " skipped; 'recording export --format mcap' saves what can be read";
    default:
        return "no recording" + where;
    }
}

std::string Contents::text() const
{
    std::string text = escaped(_path) + ": " + verdict() + '\n';
    if (!_library.empty())
        text += "written by " + escaped(_library) + '\n';
    for (const auto& [name, values] : _facts)
        for (const auto& [key, value] : values)
            text += escaped(name) + ' ' + escaped(key) + ": " + escaped(value) + '\n';
    text += sizeText(_state._size) + ", messages " + std::to_string(_messages);
    if (!_times._empty)
        text += ", " + dateOf(_times._start) + " to " + dateOf(_times._end) + " (" +
                Trovio::inSeconds(lengthOf(_times)) + ")";
    text += '\n';
    for (const auto& [id, topic] : _topics)
        text += topicLine(topic);
    if (_notKept > 0)
        text += "not kept, for the disk or the reader was too slow: records " + std::to_string(_notKept) + '\n';
    for (const Attached& attached : _attached)
        text += "attached: " + escaped(attached._name) + ", " + escaped(attached._mediaType) + ", " +
                sizeText(attached._size) + '\n';
    return text;
}

std::string Contents::json() const
{
    nlohmann::json topics = nlohmann::json::array();
    for (const auto& [id, topic] : _topics)
        topics.push_back({{"label", topic._channel._topic},
                          {"schema", topic._schema},
                          {"encoding", topic._channel._encoding},
                          {"messages", topic._messages},
                          {"bytes", topic._bytes}});
    nlohmann::json attached = nlohmann::json::array();
    for (const Attached& one : _attached)
        attached.push_back({{"name", one._name}, {"type", one._mediaType}, {"bytes", one._size}});
    const nlohmann::json all = {{"file", _path},
                                {"state", nameOf(_state._verdict)},
                                {"problem", _state._problem},
                                {"beingWritten", _isBeingWritten},
                                {"indexed", _state._indexed},
                                {"bytes", _state._size},
                                {"messages", _messages},
                                {"notKept", _notKept},
                                {"from", secondsOf(_times._start)},
                                {"to", secondsOf(_times._end)},
                                {"slots", std::move(topics)},
                                {"attached", std::move(attached)},
                                {"facts", _facts}};
    return Explain::jsonText(all) + '\n';
}
} // namespace Host
