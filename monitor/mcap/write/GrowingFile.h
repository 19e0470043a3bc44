#pragma once

#include "monitor/mcap/write/ChunkBuilder.h"
#include "monitor/mcap/write/OutputFile.h"
#include "monitor/mcap/write/Summary.h"

namespace Monitor::Mcap {

/// A recording that is a whole file after each addition. One write puts the addition and a new end (summary, footer,
/// magic) over the old end. While the disk confirms one addition, more are written already, and confirmed together.
/// What was confirmed once is never written again, only the end behind it is; whatever cuts a write, it is there for
/// whoever walks through the file. Each addition ends with a checkpoint, by which readers tell what a power cut may
/// have left in pieces from what has been damaged since.
///
/// Where a write or the disk fails, the end of what was confirmed is put back (its blocks are the file's already, so it
/// fits on a full disk), and nothing more can be added.
///
/// Threads: one at a time; each operation blocks for as long as the disk takes.
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
    // The chunk is empty afterwards, whatever comes out. The error may be that of an addition before.
    std::error_code add(ChunkBuilder& chunk);
    std::error_code add(const Attachment& attachment);
    std::error_code add(const Metadata& metadata);

    /// Waits until all additions are confirmed.
    std::error_code confirm();
    /// Notes what the disk has confirmed meanwhile, and asks it for the rest, without waiting.
    std::error_code confirmWhatIsThere();
    bool isConfirmed() const { return _written == _confirmed; }

    /// Waits likewise, writes the whole summary where it was left out for its size, and at last the data's checksum:
    /// who finds that knows that all else was on the disk before.
    std::error_code close();

    /// Bytes of the file.
    std::uint64_t size() const { return _written->_end + _written->_tail.size(); }
    /// That were confirmed.
    std::uint64_t messages() const { return _confirmed->_messages; }
    std::uint64_t room() const { return _file->room(); }

private:
    std::error_code addChunk(ChunkBuilder& chunk);
    std::error_code addRecord(Bytes& record);
    std::error_code replaceTail(Bytes& added, std::uint32_t addedChecksum, bool whole);
    void beginSync();
    std::error_code endSync();
    std::error_code fail(std::error_code error);
    bool putBack();

    /// [0, _end), and what stands behind it.
    struct State {
        std::uint64_t _end = 0;
        std::uint32_t _checksum = 0; // of [0, _end)
        Bytes _tail;
        std::uint64_t _messages = 0;
    };

    std::unique_ptr<OutputFile> _file;
    const Compression _compression;
    Summary _summary;
    std::shared_ptr<const State> _written = std::make_shared<State>();
    std::shared_ptr<const State> _syncing;              // what is brought to the disk, while _sync is valid
    std::shared_ptr<const State> _confirmed = _written; // what is there
    std::error_code _failure;
    bool _isTorn = false;               // the end that is there is none
    std::future<std::error_code> _sync; // last: waits, where nobody else did
};
} // namespace Monitor::Mcap
