#include "host/output/QueuedOutput.h"

#include "base/QuietThread.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <condition_variable>
#include <ctime>
#include <new>
#include <poll.h>
#include <span>
#include <unistd.h>
#include <utility>

namespace Host {
namespace {

// Over all queues: all that a signal handler can look at.
std::atomic<std::size_t> unwrittenBytes{0};
static_assert(std::atomic<std::size_t>::is_always_lock_free);

std::uint64_t linesIn(std::string_view unit)
{
    return std::max<std::uint64_t>(1, static_cast<std::uint64_t>(std::ranges::count(unit, '\n')));
}

// Waits a while until something can be written, and writes it. The descriptor may be shared with other processes, so
// it is not made non-blocking; a pipe that is ready takes PIPE_BUF bytes at once. Zero: look again.
ssize_t writeSome(int descriptor, std::string_view piece)
{
    constexpr int patience = 100; // milliseconds
    pollfd ready = {descriptor, POLLOUT, 0};
    if (poll(&ready, 1, patience) == 0)
        return 0;
    const ssize_t count = ::write(descriptor, piece.data(), piece.size());
    return count < 0 && (errno == EINTR || errno == EAGAIN) ? 0 : count;
}
} // namespace

/// The text that waits, and the thread's work on it.
class QueuedOutput::Queue {
public:
    Queue(int descriptor, GapLine gapLine)
        : _descriptor(descriptor), _isTerminal(isatty(descriptor)), _gapLine(std::move(gapLine))
    {
    }
    ~Queue() { unwrittenBytes -= _counted; }
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;

    bool put(std::string_view unit, bool last) OSTREL_EXCLUDES(_lock);
    void tellTotal() noexcept OSTREL_EXCLUDES(_lock);
    void writeAll() OSTREL_EXCLUDES(_lock);
    bool finish(Deadline deadline) OSTREL_EXCLUDES(_lock);
    std::string takeWaiting() OSTREL_EXCLUDES(_lock);

    std::uint64_t position() const OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        return _position;
    }
    bool hasWritten(std::uint64_t position) const OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        return _position - waiting() >= position;
    }
    int error() const OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        return _error;
    }
    bool isGone(int error) const { return error == EPIPE || (_isTerminal && error == EIO); }
    std::uint64_t dropped() const OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        return _dropped;
    }

private:
    std::size_t waiting() const OSTREL_REQUIRES(_lock) { return _text.size() - _written; }
    bool append(std::string_view unit) noexcept OSTREL_REQUIRES(_lock);
    void giveUp() OSTREL_REQUIRES(_lock);
    void tellOfDropped() noexcept OSTREL_REQUIRES(_lock);
    std::size_t nextPiece(std::span<char> piece) OSTREL_EXCLUDES(_lock);
    void wrote(ssize_t count, int error) OSTREL_EXCLUDES(_lock);

    const int _descriptor;
    const bool _isTerminal;
    const GapLine _gapLine;

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::condition_variable_any _changed;
    std::string _text OSTREL_GUARDED_BY(_lock);
    std::size_t _written OSTREL_GUARDED_BY(_lock) = 0;    // of _text
    std::size_t _counted OSTREL_GUARDED_BY(_lock) = 0;    // of unwrittenBytes
    std::uint64_t _position OSTREL_GUARDED_BY(_lock) = 0; // bytes put so far
    std::uint64_t _gap OSTREL_GUARDED_BY(_lock) = 0;      // lines dropped since the last one that was taken
    std::uint64_t _dropped OSTREL_GUARDED_BY(_lock) = 0;
    int _error OSTREL_GUARDED_BY(_lock) = 0;
    bool _ending OSTREL_GUARDED_BY(_lock) = false;    // nothing more comes
    bool _abandoned OSTREL_GUARDED_BY(_lock) = false; // nothing more shall be written
    bool _ended OSTREL_GUARDED_BY(_lock) = false;     // the thread writes no more
};

bool QueuedOutput::Queue::append(std::string_view unit) noexcept
{
    try {
        _text += unit;
    } catch (const std::bad_alloc&) {
        return false;
    }
    _position += unit.size();
    _counted += unit.size();
    unwrittenBytes += unit.size();
    return true;
}

// From now on waitForAll() does not wait for what this queue has not written.
void QueuedOutput::Queue::giveUp()
{
    unwrittenBytes -= std::exchange(_counted, 0);
}

void QueuedOutput::Queue::tellOfDropped() noexcept
{
    try {
        if (append(_gapLine(_gap, _dropped)))
            _gap = 0;
    } catch (const std::bad_alloc&) {
        return; // it is told when there is memory again
    }
}

void QueuedOutput::Queue::tellTotal() noexcept
{
    const Ostrel::LockGuard guard(_lock);
    if (_dropped > 0 && _error == 0 && !_ending) {
        tellOfDropped();
        _changed.notify_all();
    }
}

bool QueuedOutput::Queue::put(std::string_view unit, bool last)
{
    const Ostrel::LockGuard guard(_lock);
    if (_error != 0 || _ending)
        return false;
    if (_gap > 0 && (last || waiting() <= Capacity / 2))
        tellOfDropped();
    const bool hasRoom = last || waiting() == 0 || waiting() + unit.size() <= Capacity;
    if ((_gap == 0 || last) && hasRoom && append(unit)) {
        _changed.notify_all();
        return true;
    }
    _gap += linesIn(unit);
    _dropped += linesIn(unit);
    return false;
}

// Blocks until there is something; 0 at the end.
std::size_t QueuedOutput::Queue::nextPiece(std::span<char> piece)
{
    const Ostrel::LockGuard guard(_lock);
    while (waiting() == 0 && !_ending && !_abandoned)
        _changed.wait(_lock);
    if (waiting() == 0 || _abandoned || _error != 0) {
        _ended = true;
        _changed.notify_all();
        return 0;
    }
    // Whole lines, so that none is cut where the reader stops for good; one that is longer goes in pieces.
    const std::string_view next = std::string_view(_text).substr(_written, piece.size());
    const std::size_t lines = next.rfind('\n') + 1;
    return next.copy(piece.data(), lines > 0 ? lines : next.size());
}

void QueuedOutput::Queue::wrote(ssize_t count, int error)
{
    const Ostrel::LockGuard guard(_lock);
    if (_abandoned)
        return;
    if (count < 0) {
        _error = error;
        return giveUp();
    }
    _written += static_cast<std::size_t>(count);
    _counted -= static_cast<std::size_t>(count);
    unwrittenBytes -= static_cast<std::size_t>(count);
    if (_gap > 0 && waiting() <= Capacity / 2)
        tellOfDropped();
    if (waiting() == 0 || _written >= Capacity / 2) { // seldom, so that little is moved
        _text.erase(0, _written);
        _written = 0;
    }
}

void QueuedOutput::Queue::writeAll()
{
    std::array<char, PIPE_BUF> piece{};
    while (const std::size_t size = nextPiece(piece)) {
        const ssize_t count = writeSome(_descriptor, {piece.data(), size});
        wrote(count, errno);
    }
}

// Returns whether the thread has ended.
bool QueuedOutput::Queue::finish(Deadline deadline)
{
    const Ostrel::LockGuard guard(_lock);
    _ending = true;
    _changed.notify_all();
    while (!_ended && _changed.wait_until(_lock, deadline) == std::cv_status::no_timeout) {
    }
    _abandoned = true;
    return _ended;
}

std::string QueuedOutput::Queue::takeWaiting()
{
    const Ostrel::LockGuard guard(_lock);
    giveUp();
    _text.erase(0, std::exchange(_written, 0));
    return std::exchange(_text, {});
}

QueuedOutput::QueuedOutput(int descriptor, GapLine gapLine)
    : _queue(std::make_shared<Queue>(descriptor, std::move(gapLine))),
      _thread(Ostrel::quietThread("output", [queue = _queue] { queue->writeAll(); }))
{
    // That the thread takes no signals makes a closed pipe an error there, and nothing more.
}

QueuedOutput::~QueuedOutput()
{
    if (_thread.joinable())
        finish(std::chrono::steady_clock::now());
}

bool QueuedOutput::put(std::string_view unit) noexcept
{
    return _queue->put(unit, false);
}

void QueuedOutput::putLast(std::string_view unit) noexcept
{
    _queue->put(unit, true);
}

void QueuedOutput::tellTotal() noexcept
{
    _queue->tellTotal();
}

std::uint64_t QueuedOutput::position() const
{
    return _queue->position();
}

bool QueuedOutput::hasWritten(std::uint64_t position) const
{
    return _queue->hasWritten(position);
}

QueuedOutput::State QueuedOutput::state() const
{
    const int error = _queue->error();
    return error == 0 ? State::Open : _queue->isGone(error) ? State::ReaderGone : State::Failed;
}

int QueuedOutput::error() const
{
    return _queue->error();
}

std::uint64_t QueuedOutput::dropped() const
{
    return _queue->dropped();
}

std::string QueuedOutput::finish(Deadline deadline)
{
    if (_thread.joinable()) {
        if (_queue->finish(deadline))
            _thread.join();
        else
            _thread.detach();
    }
    return _queue->takeWaiting();
}

std::string QueuedOutput::takeUnwritten()
{
    return state() != State::Open ? _queue->takeWaiting() : std::string();
}

void QueuedOutput::waitForAll(std::chrono::milliseconds patience) noexcept
{
    constexpr timespec step = {0, 10'000'000};
    const auto maxIdle = patience.count() / 10;
    std::size_t before = unwrittenBytes;
    for (int steps = 0, idle = 0; steps < 100 && idle < maxIdle && before > 0; ++steps) {
        nanosleep(&step, nullptr);
        idle = unwrittenBytes < before ? 0 : idle + 1;
        before = unwrittenBytes;
    }
}
} // namespace Host
