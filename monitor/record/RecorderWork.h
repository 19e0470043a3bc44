#pragma once

#include "monitor/record/OwnChannels.h"
#include "monitor/record/SlotRecords.h"

#include <chrono>

namespace Monitor {

/// One recording, and the thread that makes it: empties the taps into the file, looks for slots that came, and notes
/// what was not kept. While too much waits for the disk the taps are not emptied: so they fill, and count what they
/// refuse.
/// Ownership: refers to what it was made from. The destructor is finish().
/// Threads:   made, finished and destroyed by one.
class RecorderWork {
public:
    /// Throws std::runtime_error where the order cannot be carried out; one that is refused makes no file.
    RecorderWork(const RecorderOptions& options, const RecorderOptions::Pairs& texts, const RecordingOrder& order,
                 Handover& handover);
    ~RecorderWork() { finish(); }
    RecorderWork(const RecorderWork&) = delete;
    RecorderWork& operator=(const RecorderWork&) = delete;

    /// Waits for the disk.
    void finish() OSTREL_EXCLUDES(_lock);

private:
    void run();
    bool waitForNextRound() OSTREL_EXCLUDES(_lock);
    void round(bool isLast);
    void flush();
    void writeGaps();
    RecorderStatus statusNow() const;
    void tell();
    void sayOfRoom(const RecorderStatus& status);
    void end(const std::string& problem);
    void say(const std::string& line) const;

    const RecorderOptions& _options;
    const std::string _path;
    const Trovio::Pattern _pattern;
    Handover& _handover;
    const double _started; // seconds of the steady clock
    Mcap::Recording _file;
    OwnChannels _own;
    SlotRecords _slots;

    // The thread's.
    std::chrono::steady_clock::time_point _nextRound;
    double _nextFlush = 0;  // seconds of the steady clock
    bool _hasEnded = false; // by a problem
    bool _saidRoom = false;
    std::string _problem; // beside those of the file

    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::condition_variable_any _changed;
    bool _ending OSTREL_GUARDED_BY(_lock) = false;
    std::thread _thread; // last: it uses all of the above
};
} // namespace Monitor
