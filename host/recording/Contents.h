#pragma once

#include "host/recording/Progress.h"
#include "monitor/mcap/read/Reader.h"

#include <string>

namespace Monitor {
class SlotCodec;
}

namespace Host {

/// How the messages of a channel are read, by the name of its schema; null where they are no values of a slot. The
/// topic of such a channel is the label of the out-slot, as the root saw it.
const Monitor::SlotCodec* codecFor(const std::string& schemaName);

/// What a recording holds, found by walking through all of it, whole or not. Who wants the messages themselves walks
/// once more, with a Monitor::Mcap::Visitor of its own: log times are arrivals, publish times stamps (see
/// monitor/mcap/format/FileTime.h). Beside slots there are the channels "@frames" {"number","time"}, "@gaps"
/// {"label","from","to","notKept"} and "@clocks" {"wall","steady","synchronized","error"}, in JSON; times there are
/// seconds since 1970. Messages stand in the order of the file, which within a chunk need not be that of their times.
class Contents final : public Monitor::Mcap::Visitor {
public:
    struct Topic {
        Monitor::Mcap::Channel _channel;
        std::string _schema;
        std::uint64_t _messages = 0;
        std::uint64_t _bytes = 0; // of its messages
        Monitor::Mcap::TimeSpan _times;
    };
    struct Attached {
        std::string _name, _mediaType; // scenes are "application/toml"
        std::uint64_t _size;           // bytes
    };

    /// Reads all. Throws std::runtime_error where the file cannot be opened.
    explicit Contents(const std::string& path);

    const Monitor::Mcap::FileState& state() const { return _state; }
    std::uint64_t messages() const { return _messages; }
    /// "whole", or what is wrong with it and what helps.
    std::string verdict() const;

    /// For people: state, time, slots, what was not kept, what is attached.
    std::string text() const;
    /// One object on a line.
    std::string json() const;

private:
    void header(std::string_view profile, std::string_view library) override;
    void schema(const Monitor::Mcap::Schema& schema) override;
    void channel(const Monitor::Mcap::Channel& channel) override;
    void message(const Monitor::Mcap::Message& message) override;
    void attachment(const Monitor::Mcap::Attachment& attachment, std::uint64_t offset, std::uint64_t length) override;
    void metadata(const Monitor::Mcap::Metadata& metadata, std::uint64_t offset, std::uint64_t length) override;
    bool goOn(std::uint64_t read, std::uint64_t size) override;
    void countGap(std::string_view json);

    const std::string _path;
    Progress _progress{"reading"};
    Monitor::Mcap::FileState _state;
    bool _isBeingWritten = false;
    std::string _library;
    std::map<std::uint16_t, std::string> _schemas;
    std::map<std::uint16_t, Topic> _topics;
    std::uint16_t _gapsChannel = 0;
    std::uint64_t _messages = 0, _notKept = 0;
    Monitor::Mcap::TimeSpan _times;
    std::vector<Attached> _attached;
    std::map<std::string, Monitor::Mcap::Texts> _facts; // metadata, by name
};
} // namespace Host
