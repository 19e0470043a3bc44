#include "host/run/EndWatch.h"

#include "base/QuietThread.h"
#include "explain/text/Escape.h"
#include "host/output/QueuedOutput.h"
#include "host/show/Keyboard.h"

#include <algorithm>
#include <new>
#include <unistd.h>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

constexpr double first = 1, every = 5, interval = 0.1, forever = 3600; // seconds

double secondsOf(const Trovio::NodeMove::Info& move)
{
    return std::chrono::duration<double>(Trovio::NodeMove::Clock::now() - move._since).count();
}

constexpr auto patience = std::chrono::milliseconds(100); // with a reader that has stopped

// The end must come, too, where there is no memory to say anything.
template <class Action>
void withoutMemory(const Action& action) noexcept
{
    try {
        action();
    } catch (const std::bad_alloc&) {
        return;
    }
}

const char* doneOf(Trovio::NodeMove::Kind kind)
{
    switch (kind) {
    case Trovio::NodeMove::Kind::IsConfigured:
        return "taken its settings";
    case Trovio::NodeMove::Kind::Starts:
        return "started";
    case Trovio::NodeMove::Kind::Stops:
        return "stopped";
    case Trovio::NodeMove::Kind::IsDestroyed:
        return "been destroyed";
    }
    return "come back"; // not reached
}

std::string described(const Trovio::NodeMove::Info& move)
{
    const double seconds = secondsOf(move);
    return "node " + inQuotes(move._label) + " has not " + doneOf(move._kind) +
           (seconds < first ? " yet" : " for " + std::to_string(static_cast<long>(seconds)) + " s");
}
} // namespace

EndWatch::EndWatch(const StopSignal& stop, Say say)
    : _stop(stop), _say(std::move(say)), _thread(Ostrel::quietThread("end watch", [this] { watch(); }))
{
    _stop.setWatched(true);
}

EndWatch::~EndWatch()
{
    _stop.setWatched(false);
    _over = true;
    _stop.tell();
    _thread.join();
}

void EndWatch::begin()
{
    _begun = true;
    _stop.tell();
}

void EndWatch::watch()
{
    for (;;) {
        const bool ends = _begun || _stop.requested();
        _stop.waitForNews(ends ? interval : forever);
        if (_stop.second() != 0)
            endAtOnce();
        if (_over)
            return;
        if (_begun || _stop.requested())
            withoutMemory([this] { tellOfHangingNode(); });
    }
}

void EndWatch::tellOfHangingNode()
{
    const auto move = Trovio::NodeMove::longest();
    if (!move)
        return;
    // One node may do one thing after another, and two may have one label.
    if (!_told || move->_since != _told->_since || move->_kind != _told->_kind || move->_label != _told->_label)
        _next = first;
    _told = move;
    const double seconds = secondsOf(*move);
    if (seconds < _next)
        return;
    _next = std::max(_next, seconds - every) + every;
    _say(described(*move) + "; a second signal (Ctrl-C, SIGTERM) ends the program without it");
}

void EndWatch::endAtOnce() const
{
    withoutMemory([this] {
        if (const auto move = Trovio::NodeMove::longest())
            _say("ended by a second signal: " + described(*move));
    });
    QueuedOutput::waitForAll(patience);
    Keyboard::restoreForGood();
    _exit(128 + _stop.second());
}
} // namespace Host
