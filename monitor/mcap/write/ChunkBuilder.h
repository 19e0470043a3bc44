#pragma once

#include "monitor/mcap/format/RecordBytes.h"
#include "monitor/mcap/format/RecordParts.h"

namespace Monitor::Mcap {

/// A chunk that is being filled: messages, and the schemas and channels that come up in it first.
/// Threads: one at a time; it may be handed from one to the next.
class ChunkBuilder {
public:
    ChunkBuilder();

    /// Takes memory for so much at once, and for what comes behind it in the file.
    void reserve(std::size_t bytes, std::size_t messages);
    /// Makes the checksum of what was added, which pack() does otherwise.
    void sumUp();
    /// Empties it, and keeps the memory: taking new memory for a chunk costs as much as copying it.
    void clear();

    void add(const Schema& schema);
    void add(const Channel& channel);
    void add(const Message& message);

    std::size_t size() const { return _bytes.size(); }
    std::size_t messages() const { return _index.size(); }
    std::size_t capacity() const { return _bytes.capacity() + _index.capacity() * sizeof _index[0]; } // bytes
    /// A chunk without messages has no time, so readers would let the file begin in 1970: it is not to be written.
    bool empty() const { return _index.empty(); }

    const std::vector<Schema>& schemas() const { return _schemas; }
    const std::vector<Channel>& channels() const { return _channels; }

    enum class Compression { None, Zstd };

    /// The chunk's record with the indexes of its messages behind it, as they stand in a file from `offset` on, and how
    /// the summary names it. Of the builder only clear() may be used afterwards, which ends the use of the bytes.
    struct Packed {
        Bytes& _bytes;               // the builder's
        std::uint32_t _checksum = 0; // of _bytes
        ChunkIndex _index;
        ChunkMessages _messages;
    };
    Packed pack(std::uint64_t offset, Compression compression = Compression::None);

private:
    Bytes _bytes;                                             // the head's room, then the records
    std::vector<std::pair<std::uint16_t, IndexEntry>> _index; // as they came: sorted by channel once, in pack()
    std::vector<Schema> _schemas;
    std::vector<Channel> _channels;
    TimeSpan _times;
    std::uint32_t _checksum = 0; // of the first _summed bytes of the records
    std::size_t _summed = 0;
};

/// Appends the message indexes of a chunk, from `offset` of the file on, and puts their places into `index`.
void appendMessageIndexes(Bytes& bytes, std::uint64_t offset, const ChunkMessages& messages, ChunkIndex& index);

} // namespace Monitor::Mcap
