#pragma once

#include "monitor/mcap/read/ChannelTable.h"
#include "monitor/mcap/read/ChunkSearch.h"
#include "monitor/mcap/read/FileState.h"

namespace Monitor::Mcap {

/// Walks through a file from its first record to the last, without its index: so it reads whole files and such whose
/// end is missing, torn or just being written. Behind a damaged place it goes on with the next good chunk.
///
/// What tells a cut from damage: checkpoints say what was on the disk when they were written, and a fault in that is
/// damage. Another fault is a cut, and the file ends there: what stands behind it was never confirmed. In a file
/// without checkpoints each addition counts as confirmed before the next one: so only the last one can be torn, and a
/// fault with a good chunk, attachment or metadata behind it is damage. Data that have a checksum were ended by their
/// writer after all else was on the disk: there each fault is damage, but for an end that is not there: that is a file
/// which was copied in part.
///
/// Nothing in the file sizes memory but what is checked: against the bytes that are there, and maxRecord.
class Reader {
public:
    Reader(InputFile& file, Visitor& visitor) : _file(file), _visitor(visitor), _table(visitor), _search(file) {}

    /// Once. What the visitor throws passes through.
    FileState read();

private:
    struct Frame {
        Op _op;
        std::uint64_t _offset, _length; // of the whole record
        std::uint64_t end() const { return _offset + _length; }
    };

    bool begins();
    bool step();
    std::optional<Frame> frameAt(std::uint64_t offset);
    bool load(const Frame& frame);
    ByteView content() const { return ByteView(_record).subspan(frameSize); }
    /// What is wrong with the record that was loaded; empty where nothing is.
    std::string visit(const Frame& frame);
    std::string visitChunk(const Frame& frame);
    std::string visitMessageIndex(const Frame& frame);
    std::string visitAttachment(const Frame& frame);
    std::string visitMetadata(const Frame& frame);
    std::string visitCheckpoint(const Frame& frame);
    void accept(const Frame& frame);
    void endChunk();
    void readEnd(const Frame& dataEnd);
    bool skip(std::uint64_t from, const std::optional<Frame>& frame);
    void problem(std::uint64_t offset, const std::string& what);
    bool isCutAt(std::uint64_t offset);
    FileState::Verdict verdict() const;

    InputFile& _file;
    Visitor& _visitor;
    ChannelTable _table;
    ChunkSearch _search;
    FileState _state;
    std::uint64_t _at = 0;
    Bytes _record; // the one that is read, with its frame
    Bytes _unpacked;
    std::map<std::uint64_t, std::uint64_t> _chunks; // lengths of the good ones, by offset
    std::optional<ChunkPlace> _chunk;               // the last one, while its indexes come
    std::uint32_t _chunkChecksum = 0;               // up to its end
    bool _isChunkFirst = false;                     // before any problem
    std::uint64_t _accepted = 0;                    // records, before any problem
    bool _hasCheckpoints = false;
    bool _isCut = false;     // at the first problem, as checkpoints say
    bool _confirmed = false; // what has the first problem was on the disk once
    bool _isStrict = false;  // all was on the disk once, so any problem is damage
};
} // namespace Monitor::Mcap
