#pragma once

#include "monitor/mcap/write/ChunkBuilder.h"
#include "monitor/mcap/write/OutputFile.h"
#include "monitor/mcap/write/Summary.h"

namespace Monitor::Mcap {

/// A recording that is a whole file after each addition. One write puts the addition and a new end (summary, footer,
/// magic) over the old end, and waits for the disk: what was confirmed once is never written again, only the end behind
/// it is. Whatever cuts a write, all additions before are there, for whoever walks through the file.
///
/// Where a write fails, the old end is put back (its blocks are the file's already, so it fits on a full disk), and
/// nothing more can be added.
///
/// Invariant: [0, _end) is on the disk, and _tail is what stands behind it.
/// Threads:   one at a time; each operation blocks for as long as the disk takes.
class GrowingFile {
public:
    using Compression = ChunkBuilder::Compression;

    explicit GrowingFile(std::unique_ptr<OutputFile> file, Compression compression = Compression::None)
        : _file(std::move(file)), _compression(compression)
    {
    }

    /// The file's head; the first thing that is added. `library` says who wrote it.
    std::error_code begin(std::string_view library);

    // One addition a call: a chunk with at least one message, an attachment or metadata.
    // The chunk is empty afterwards, whatever comes out.
    std::error_code add(ChunkBuilder& chunk);
    std::error_code add(const Attachment& attachment);
    std::error_code add(const Metadata& metadata);

    /// Writes the whole summary where it was left out for its size, and at last the data's checksum: who finds that
    /// knows that all else was on the disk before.
    std::error_code close();

    /// Bytes of the file.
    std::uint64_t size() const { return _end + _tail.size(); }
    std::uint64_t messages() const { return _confirmed; }
    std::uint64_t room() const { return _file->room(); }

private:
    std::error_code addChunk(ChunkBuilder& chunk);
    std::error_code addRecord(Bytes& record);
    std::error_code replaceTail(Bytes& added, std::uint32_t addedChecksum, bool whole);
    void putBack();

    std::unique_ptr<OutputFile> _file;
    const Compression _compression;
    Summary _summary;
    std::uint64_t _end = 0;
    std::uint32_t _checksum = 0; // of [0, _end)
    Bytes _tail;
    std::uint64_t _confirmed = 0; // messages
    bool _lacksSummary = false;
    std::error_code _failure;
};
} // namespace Monitor::Mcap
