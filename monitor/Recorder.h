#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Monitor {

/// What a program says of itself in each of its recordings.
struct RecorderOptions {
    using Pairs = std::vector<std::pair<std::string, std::string>>;
    std::string program{};                              // its name and version
    Pairs facts{};                                      // of the run: names and values
    std::function<Pairs()> texts{};                     // attached: names and contents of scene files; start() asks
                                                        // first, and throws what it throws
    std::function<void(const std::string& line)> say{}; // what a user must know; any thread, and may not block
};

/// What is to be recorded, and where to.
struct RecordingOrder {
    std::string path{};                       // of the file that is made; it must not exist yet
    std::string slots = "*";                  // only out-slots whose label, as the root sees it, fits this pattern
    std::size_t memory = 256UL * 1024 * 1024; // bytes of plain values that may wait, of all slots together
};

/// How a recording is going, or how the last one went.
struct RecorderStatus {
    bool _isRecording = false;
    std::string _path;          // empty before the first
    std::size_t _slots = 0;     // that were recorded so far
    std::uint64_t _records = 0; // that were taken for the file
    std::uint64_t _notKept = 0; // that came and were not, for the disk or this machine was too slow
    std::uint64_t _leftOut = 0; // slots that are not recorded: the memory is used up, or their label has a '*'
    std::uint64_t _size = 0;    // bytes of the file
    double _secondsLeft = -1;   // until the disk is full, as the file grew so far; negative where nobody knows yet
    std::string _problem;       // why nothing more is recorded; empty where all is well

    /// "slots 3, records 1200, 0.4 MiB, not kept 0, room for 310 min"
    std::string line() const;
};

/// Records every out-slot of the tree, or those that fit a pattern, into an MCAP file: each record with its arrival and
/// its stamp, the frames, what was not kept and when, the clocks, and the texts of the scene. One file at a time.
/// Ownership: made while Trovio's root is open, and destroyed before Trovio::Root::shutdown(): it holds pooled objects.
/// Threads:   any, any operation. Who pushes into a slot never waits for it, nor does who calls frame() or status();
///            start() and stop() wait for the disk.
class Recorder {
public:
    explicit Recorder(RecorderOptions options = {});
    /// As stop().
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Throws std::runtime_error, and changes nothing, where something is being recorded already, the file cannot be
    /// made, or the pattern is none.
    void start(const RecordingOrder& order);

    /// Takes what came so far, ends the file and says how it went; how the last one went where nothing is recorded.
    RecorderStatus stop();

    RecorderStatus status() const;

    /// A frame of the program has run; `time`, in wall-clock seconds, is the one that it ran for.
    void frame(std::uint64_t number, double time);

private:
    class State;
    const std::unique_ptr<State> _state;
};
} // namespace Monitor
