#pragma once

#include "monitor/mcap/read/Reader.h"

#include <functional>

namespace Monitor {

class SlotCodec;

inline constexpr std::string_view framesTopic = "@frames"; // a JSON object with the frame's "number" each
inline constexpr std::string_view gapsTopic = "@gaps";     // with how many records of a slot were "notKept"

/// The topic of a channel with the records of a slot is the label of the out-slot, as the root saw it. Beside those
/// there are "@frames" {"number","time"}, "@gaps" {"label","from","to","notKept"} and "@clocks"
/// {"wall","steady","synchronized","error"}, in JSON; times there are seconds since 1970.
struct RecordedChannel {
    std::uint16_t _id;
    std::string _topic, _encoding, _schema; // the last is the name of its schema
    std::uint64_t _messages = 0;
    std::uint64_t _bytes = 0; // of its messages
    Mcap::TimeSpan _times;    // log times: arrivals
};

/// How messages of that schema are read; null where they are no values of a slot.
const SlotCodec* codecOfSchema(std::string_view schemaName);

struct RecordedChunk {
    Mcap::TimeSpan _times;
    std::uint64_t _offset, _length; // of its record
};

struct RecordedText {
    std::string _name, _text;
};

struct RecordedAttachment {
    std::string _name, _mediaType; // scenes are "application/toml"
    std::uint64_t _size;           // bytes
};

/// What a recording holds beside its messages, and where those are.
struct RecordedFile {
    Mcap::FileState _state;
    bool _isBeingWritten = false;
    std::string _library; // that wrote it
    std::vector<RecordedChannel> _channels;
    std::vector<RecordedChunk> _chunks; // those with messages, by the time that they begin
    std::vector<RecordedAttachment> _attached;
    std::vector<RecordedText> _scenes;         // the TOML files among them
    std::map<std::string, Mcap::Texts> _facts; // "host" and "clock": what was noted of them
    Mcap::TimeSpan _times;                     // of all messages in chunks
    std::uint64_t _messages = 0;               // in chunks
    std::uint64_t _outside = 0;                // messages that stand in no good chunk, and are not found by time
    std::uint64_t _notKept = 0;                // records, by what "@gaps" says

    const RecordedChannel* find(std::string_view topic) const;
};

/// Walks through the file once, whole or not. `goOn` as Visitor::goOn().
RecordedFile readRecordedFile(Mcap::InputFile& file, const std::function<bool(std::uint64_t, std::uint64_t)>& goOn);

} // namespace Monitor
