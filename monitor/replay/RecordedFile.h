#pragma once

#include "monitor/mcap/read/Reader.h"

#include <functional>

namespace Monitor {

inline constexpr std::string_view framesTopic = "@frames"; // a JSON object with the frame's "number" each

struct RecordedChannel {
    std::uint16_t _id;
    std::string _topic, _encoding, _schema; // the last is the name of its schema
};

struct RecordedText {
    std::string _name, _text;
};

/// What a recording holds beside its messages, and where those are.
struct RecordedFile {
    Mcap::FileState _state;
    std::vector<RecordedChannel> _channels;
    std::vector<Mcap::ChunkIndex> _chunks; // those with messages, by the time that they begin
    std::vector<RecordedText> _scenes;     // the TOML files that are attached
    Mcap::TimeSpan _times;
    std::uint64_t _messages = 0; // in chunks
    std::uint64_t _outside = 0;  // messages that stand in no good chunk, and are not found by time

    const RecordedChannel* find(std::string_view topic) const;
};

/// Walks through the file once. `goOn` as Visitor::goOn().
RecordedFile readRecordedFile(Mcap::InputFile& file, const std::function<bool(std::uint64_t, std::uint64_t)>& goOn);

} // namespace Monitor
