#include "monitor/mcap/read/ChannelTable.h"

namespace Monitor::Mcap {

namespace {

constexpr std::size_t maxKept = 64UL * 1024 * 1024; // bytes of all schemas and channels of a file
constexpr const char* tooShort = "is too short for its fields";
constexpr const char* tooMany = "brings the schemas and channels of the file above 64 MiB";
} // namespace

bool ChannelTable::keep(std::size_t bytes)
{
    _kept += bytes;
    return _kept <= maxKept;
}

std::string ChannelTable::visit(const RecordView& record)
{
    switch (record._op) {
    case Op::Schema:
        return visitSchema(record._content);
    case Op::Channel:
        return visitChannel(record._content);
    case Op::Message:
        return visitMessage(record._content);
    default:
        return {};
    }
}

std::string ChannelTable::visitAll(ByteView records, ChunkMessages& messages)
{
    const std::size_t size = records.size();
    while (!records.empty()) {
        const std::size_t offset = size - records.size();
        const auto record = takeRecord(records);
        if (!record)
            return "goes beyond the end of its chunk";
        if (std::string problem = visit(*record); !problem.empty())
            return problem;
        if (record->_op != Op::Message)
            continue;
        const auto message = parseMessage(record->_content);
        messages[message->_channel].push_back({message->_logTime, offset});
    }
    return {};
}

std::string ChannelTable::visitSchema(ByteView content)
{
    const auto schema = parseSchema(content);
    if (!schema)
        return tooShort;
    if (const auto known = _schemas.find(schema->_id); known != _schemas.end())
        return known->second == *schema ? "" : "gives schema " + std::to_string(schema->_id) + " another content";
    if (!keep(content.size()))
        return tooMany;
    _visitor.schema(_schemas[schema->_id] = *schema);
    return {};
}

std::string ChannelTable::visitChannel(ByteView content)
{
    const auto channel = parseChannel(content);
    if (!channel)
        return tooShort;
    const std::string number = std::to_string(channel->_id);
    if (const auto known = _channels.find(channel->_id); known != _channels.end())
        return known->second == *channel ? "" : "gives channel " + number + " another content";
    if (channel->_schema != 0 && !_schemas.contains(channel->_schema))
        return "gives channel " + number + " schema " + std::to_string(channel->_schema) + ", which there is not";
    if (!keep(content.size()))
        return tooMany;
    _visitor.channel(_channels[channel->_id] = *channel);
    return {};
}

std::string ChannelTable::visitMessage(ByteView content)
{
    const auto message = parseMessage(content);
    if (!message)
        return tooShort;
    if (!has(message->_channel))
        return "is of channel " + std::to_string(message->_channel) + ", which there is not";
    _visitor.message(*message);
    return {};
}
} // namespace Monitor::Mcap
