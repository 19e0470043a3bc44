#include "nodes/shared/Worker.h"

#include "base/QuietThread.h"
#include "osg/LogMessage.h"
#include "osg/LogRecord.h"
#include "trovio/messages/ExceptionText.h"
#include <array>
#include <cstdint>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <system_error>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxDescriptors = 8;

/// No exception may leave a thread: it would end the program.
void runGuarded(const std::function<void()>& body, const std::function<void(const std::string&)>& failed) noexcept
{
    try {
        try {
            body();
        } catch (...) {
            failed(describeCurrentException());
        }
    } catch (...) {
        osg::logMessage(osg::LogFatal, {"Trovio", "nodes/Worker", __LINE__, __FUNCTION__},
                        "the thread of a node ended, and there was no memory to say why\n");
    }
}

} // namespace

Worker::Worker(Clock& clock) : _event(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)), _alarm(clock.createAlarm())
{
    if (!_event.isOpen())
        throw std::system_error(errno, std::generic_category(), "no event descriptor");
}

Worker::~Worker()
{
    stop();
}

void Worker::start(const char* name, std::function<void()> body, std::function<void(const std::string&)> failed)
{
    _stopping = false;
    _turn = Stepper::join(_signalled);
    const auto run = [turn = _turn.get(), body = std::move(body), failed = std::move(failed)] {
        if (turn)
            turn->begin();
        runGuarded(body, failed);
        if (turn)
            turn->end();
    };
    try {
        _thread = Ostrel::quietThread(std::string(name).substr(0, 15).c_str(), run);
    } catch (...) {
        _turn.reset(); // else it would be waited for
        throw;
    }
}

void Worker::stop()
{
    if (!_thread.joinable())
        return;
    _stopping = true;
    signal();
    if (_turn)
        _turn->finish();
    _thread.join();
    _turn.reset();
}

void Worker::wake()
{
    if (!_signalled.exchange(true))
        signal();
}

bool Worker::wait(std::optional<double> until, std::span<const int> descriptors)
{
    if (isStopping())
        return false;
    if (descriptors.size() > maxDescriptors)
        throw std::logic_error("a worker waits for at most " + std::to_string(maxDescriptors) + " descriptors");
    if (_turn) {
        _turn->wait(until, descriptors);
        clearSignal();
    } else
        sleep(until, descriptors);
    return !isStopping();
}

void Worker::sleep(std::optional<double> until, std::span<const int> descriptors)
{
    setAlarm(until);
    std::array<pollfd, maxDescriptors + 2> waiting{{{_event.get(), POLLIN, 0}, {_alarm->getDescriptor(), POLLIN, 0}}};
    std::size_t count = 2;
    for (const int descriptor : descriptors)
        waiting[count++] = {descriptor, POLLIN, 0};
    ::poll(waiting.data(), count, -1);
    if (waiting[0].revents != 0)
        clearSignal();
}

void Worker::setAlarm(std::optional<double> until)
{
    // An alarm that went off stays readable until it is set again, so the same time need not be set twice.
    if (until == _until)
        return;
    _until = until;
    if (until)
        _alarm->set(*until);
    else
        _alarm->clear();
}

void Worker::signal()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(_event.get(), &one, sizeof(one)); // fails only where it is set anyway
}

void Worker::clearSignal()
{
    // Drained before the flag is cleared: a wake() in between is not lost, as the caller looks for work now.
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = ::read(_event.get(), &count, sizeof(count));
    _signalled = false;
}

} // namespace Trovio::Nodes
