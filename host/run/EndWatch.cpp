#include "host/run/EndWatch.h"

#include "base/QuietThread.h"
#include "host/output/QueuedOutput.h"
#include "host/show/Keyboard.h"

#include <new>
#include <unistd.h>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

constexpr double interval = 0.1, forever = 3600; // seconds

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
    if (const std::string news = _hanging.news(); !news.empty())
        _say(news + "; a second signal (Ctrl-C, SIGTERM) ends the program without it");
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
