#pragma once

#include "base/Mutex.h"
#include "monitor/Recorder.h"

#include <vector>

namespace Monitor {

struct RecordedFrame {
    std::uint64_t _number;
    double _time; // seconds of the wall clock
};

/// What the recorder's thread and all others hand to each other, so that nobody waits for a disk.
/// Threads: any.
class Handover {
public:
    static constexpr std::size_t MaxFrames = 4096; // that wait for the recorder's thread: some seconds

    /// How it goes. Frames are taken from the first status on that says that something is being recorded, up to the
    /// first one that does not.
    void tell(const RecorderStatus& status) OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        if (status._isRecording && !_status._isRecording) {
            _frames.clear();
            _frames.reserve(MaxFrames); // so that add() allocates nothing
            _framesNotKept = 0;
        }
        _status = status;
    }
    RecorderStatus status() const OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        return _status;
    }

    void add(const RecordedFrame& frame) OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        if (!_status._isRecording)
            return;
        if (_frames.size() < MaxFrames)
            _frames.push_back(frame);
        else
            ++_framesNotKept;
    }
    std::vector<RecordedFrame> takeFrames() OSTREL_EXCLUDES(_lock)
    {
        std::vector<RecordedFrame> frames;
        frames.reserve(MaxFrames);
        const Ostrel::LockGuard guard(_lock);
        frames.swap(_frames);
        return frames;
    }
    /// Since the recording began.
    std::uint64_t framesNotKept() const OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        return _framesNotKept;
    }

private:
    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    RecorderStatus _status OSTREL_GUARDED_BY(_lock);
    std::vector<RecordedFrame> _frames OSTREL_GUARDED_BY(_lock);
    std::uint64_t _framesNotKept OSTREL_GUARDED_BY(_lock) = 0;
};
} // namespace Monitor
