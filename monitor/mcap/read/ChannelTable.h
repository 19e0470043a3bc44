#pragma once

#include "monitor/mcap/read/Visitor.h"

namespace Monitor::Mcap {

/// The schemas and channels of a file that is read, and what is wrong with the records that name them. Problems are
/// texts that go behind "a record"; empty where there is none.
class ChannelTable {
public:
    explicit ChannelTable(Visitor& visitor) : _visitor(visitor) {}

    /// Tells the visitor of a schema, channel or message; of nothing else, and of what comes again not twice.
    std::string visit(const RecordView& record);

    /// Tells of all records of a chunk, and where its messages stand. Ends at the first problem.
    std::string visitAll(ByteView records, ChunkMessages& messages);

    bool has(std::uint16_t channel) const { return _channels.contains(channel); }

private:
    std::string visitSchema(ByteView content);
    std::string visitChannel(ByteView content);
    std::string visitMessage(ByteView content);
    bool keep(std::size_t bytes);

    Visitor& _visitor;
    std::map<std::uint16_t, Schema> _schemas;
    std::map<std::uint16_t, Channel> _channels;
    std::size_t _kept = 0; // bytes of schemas and channels
};
} // namespace Monitor::Mcap
