#pragma once

#include "monitor/mcap/format/RecordBytes.h"
#include "monitor/mcap/format/RecordParts.h"

namespace Monitor::Mcap {

/// What the end of a file says about all before it, so that readers need not walk through it: schemas, channels, where
/// the chunks, attachments and metadata stand, and how many messages there are. Kept as bytes, for it is written after
/// each chunk.
class Summary {
public:
    void add(const Schema& schema);
    void add(const Channel& channel);
    void add(const ChunkIndex& chunk, const ChunkMessages& messages);
    /// The record of the attachment stands at `offset` and is `length` bytes long.
    void add(const Attachment& attachment, std::uint64_t offset, std::uint64_t length);
    void add(const Metadata& metadata, std::uint64_t offset, std::uint64_t length);

    /// Bytes of what append() puts there, about.
    std::size_t size() const;
    std::uint64_t messages() const { return _messages; }

    /// Appends what ends a file in which it stands at `offset`: the data's end with `dataChecksum` (0: none), summary,
    /// footer, magic. `whole` false leaves the summary out.
    void append(Bytes& bytes, std::uint64_t offset, std::uint32_t dataChecksum, bool whole) const;

private:
    struct Group {
        Op _op;
        Bytes _records;
        std::uint32_t _count = 0;
    };
    RecordBytes next(Group& group)
    {
        ++group._count;
        return RecordBytes(group._records);
    }
    Group statistics() const;

    Group _schemas{Op::Schema, {}}, _channels{Op::Channel, {}}, _chunks{Op::ChunkIndex, {}};
    Group _attachments{Op::AttachmentIndex, {}}, _metadata{Op::MetadataIndex, {}};
    std::uint64_t _messages = 0;
    std::map<std::uint16_t, std::uint64_t> _messagesOf; // channels
    TimeSpan _times;
};
} // namespace Monitor::Mcap
