#include "nodes/osc/OscOutput.h"

#include "nodes/shared/Report.h"
#include "nodes/shared/RoundRobin.h"
#include "trovio/BasicInSlot.h"
#include <cerrno>
#include <cstring>

namespace Trovio::Nodes {

namespace {

constexpr double lookupPeriod = 0.05; // seconds from one question whether the name server has answered to the next
constexpr double pausePeriod = 5.0;   // seconds from a failed search to the next
constexpr double agingPeriod = 10.0;  // seconds after which the address of a troubled host is asked for again
constexpr double probation = 1.0;     // seconds in which a refusal would have come back
constexpr int maxRepliesAtOnce = 64;
constexpr timeval maxSendTime = {0, 200000};

} // namespace

OscOutput::OscOutput(Clock& clock, std::shared_ptr<NameLookup> lookup, OscOutSettings settings,
                     OscOutCounters& counters, Health health)
    : _clock(clock),
      _lookup(std::move(lookup)),
      _settings(std::move(settings)),
      _counters(counters),
      _health(std::move(health)),
      _packer(_settings._bundling, [this](Bytes packet, std::size_t messages) { send(packet, messages); }),
      _tooLargeReports(clock),
      _shortage(clock, counters._withoutMemory, "OSC: sending"),
      _worker(clock)
{
    const OscSender::Manner manner{_settings._queue, _settings._gathering, _counters._replaced,
                                   [this] { _worker.wake(); }};
    for (const OscEntry& entry : _settings._entries)
        _senders.push_back(std::make_unique<OscSender>(entry, manner));
}

void OscOutput::start()
{
    _worker.start(
        "osc output", [this] { run(); }, [this](const std::string& problem) { _health("output ended: " + problem); });
}

void OscOutput::stop()
{
    _worker.stop();
    _lookup->cancel();
    _socket = FileDescriptor();
    _search = Search::Idle;
    _searchTime = 0.0;
    _troubled = false;
    _wellFrom.reset();
}

void OscOutput::forEachSlot(const std::function<void(BasicInSlot&)>& use)
{
    for (const auto& sender : _senders)
        for (BasicInSlot* const slot : sender->getSlots())
            use(*slot);
}

void OscOutput::run()
{
    for (;;) {
        const bool isDone = _shortage.survives([this] { goOn(); });
        const int descriptor = _socket.get();
        const auto next = isDone ? getNextTime() : _clock.now() + MemoryShortage::Pause;
        if (!_worker.wait(next, {&descriptor, _socket.isOpen() ? 1U : 0U}))
            return;
    }
}

std::optional<double> OscOutput::getNextTime() const
{
    if (!_socket.isOpen())
        return _searchTime;
    std::optional<double> next = _wellFrom;
    for (const auto& sender : _senders)
        if (const auto due = sender->getDueTime(); due && (!next || *due < *next))
            next = due;
    return next;
}

void OscOutput::goOn()
{
    if (_socket.isOpen() && isOutdated())
        _socket = FileDescriptor();
    if (!_socket.isOpen())
        seekTarget();
    if (_socket.isOpen()) {
        listen();
        drain();
    }
}

bool OscOutput::isOutdated() const
{
    return _troubled && _search == Search::Done && _clock.now() >= _searchTime + agingPeriod;
}

void OscOutput::seekTarget()
{
    const Endpoint& target = _settings._target;
    const double now = _clock.now();
    if (now < _searchTime)
        return;
    _searchTime = now + pausePeriod;
    if (const auto numeric =
            SocketAddress::parse(target._host == "localhost" ? "127.0.0.1" : target._host, target._port)) {
        openSocket(*numeric);
        return;
    }
    if (_search != Search::Asked)
        _lookup->begin(target._host, target._port);
    const auto answer = _lookup->poll();
    _search = answer ? Search::Done : Search::Asked;
    if (!answer)
        _searchTime = now + lookupPeriod;
    else if (answer->_address)
        openSocket(*answer->_address);
    else
        fail("cannot find the host '" + target._host + "': " + answer->_problem);
}

void OscOutput::openSocket(const SocketAddress& target)
{
    FileDescriptor socket(::socket(target.getFamily(), SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    ::setsockopt(socket.get(), SOL_SOCKET, SO_BROADCAST, &on, sizeof(on));
    ::setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &maxSendTime, sizeof(maxSendTime));
    _target = target.str();
    if (!socket.isOpen() || ::connect(socket.get(), target.get(), target.getLength()) != 0) {
        fail("cannot send to " + _target + ": " + std::strerror(errno));
        return;
    }
    _socket = std::move(socket);
    if (_troubled)
        _wellFrom = _clock.now() + probation;
}

void OscOutput::drain()
{
    const auto takeOne = [this, now = _clock.now()](OscSender& sender) {
        const auto stamp = sender.take(_writer, now);
        if (stamp)
            _packer.add(_writer.finish(), *stamp);
        return stamp.has_value();
    };
    // A send may take its time, and there are many: a stop does not wait for all of them.
    const bool mayBeMore = takeInTurn(_senders, takeOne, [this] { return !_worker.isStopping(); });
    _packer.flush();
    if (mayBeMore)
        _worker.wake();
}

void OscOutput::send(Bytes packet, std::size_t messages)
{
    int error = 0;
    // The first try may only bring back what became of an earlier packet.
    for (int tries = 0; tries < 2; ++tries) {
        if (::send(_socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL) >= 0) {
            _counters._packets.add();
            _counters._messages.add(messages);
            if (_troubled && !_wellFrom)
                _wellFrom = _clock.now() + probation;
            return;
        }
        error = errno;
        if (error != ECONNREFUSED)
            break;
        refused();
    }
    _counters._failed.add(messages);
    if (error == ECONNREFUSED)
        return; // told already
    if (error != EMSGSIZE) {
        fail("cannot send to " + _target + ": " + std::strerror(error));
    } else if (const auto more = _tooLargeReports.admit()) {
        report(osg::LogWarning, "OSC: a message of " + std::to_string(packet.size()) +
                                    " bytes does not fit into one packet to " + _target + ", which holds about 65000" +
                                    *more);
    }
}

void OscOutput::listen()
{
    char ignored = 0;
    int error = 0;
    for (int i = 0; i < maxRepliesAtOnce && error != EAGAIN; ++i) {
        error = ::recv(_socket.get(), &ignored, 1, MSG_DONTWAIT) < 0 ? errno : 0;
        if (error == ECONNREFUSED)
            refused();
        else if (error != 0 && error != EAGAIN)
            fail("cannot send to " + _target + ": " + std::strerror(error));
    }
    if (_wellFrom && _clock.now() >= *_wellFrom) {
        _wellFrom.reset();
        _troubled = false;
        _health({});
    }
}

void OscOutput::refused()
{
    _counters._refused.add();
    fail("nobody listens at " + _target);
}

void OscOutput::fail(const std::string& problem)
{
    _wellFrom.reset();
    _troubled = true;
    _health(problem);
}

} // namespace Trovio::Nodes
