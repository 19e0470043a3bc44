#include "nodes/osc/OscInput.h"

#include "nodes/osc/OscListenPlace.h"
#include "nodes/shared/Report.h"

namespace Trovio::Nodes {

namespace {

constexpr double retryPeriod = 2.0; // seconds between two tries to get the port

std::string countPackets(std::uint64_t count)
{
    return (count == 0 ? "no" : std::to_string(count)) + (count == 1 ? " packet" : " packets");
}

} // namespace

OscInput::OscInput(Clock& clock, OscInSettings settings, OscInCounters& counters, OscDispatcher::Show show,
                   Health health)
    : _clock(clock),
      _settings(std::move(settings)),
      _counters(counters),
      _health(std::move(health)),
      _dispatcher(_settings._entries, counters, std::move(show)),
      _malformedReports(clock),
      _shortage(clock, counters._withoutMemory, "OSC: receiving"),
      _worker(clock)
{
}

void OscInput::start()
{
    open();
    _worker.start(
        "osc input", [this] { run(); }, [this](const std::string& problem) { _health("input ended: " + problem); });
}

void OscInput::stop()
{
    _worker.stop();
    _counters._unread.add(_receiver.discardUnread());
    _counters._dropped.add(_receiver.takeDropped());
    _receiver.close();
}

void OscInput::run()
{
    std::optional<double> retry;
    for (;;) {
        if (!_receiver.isOpen() && !retry)
            retry = _clock.now() + retryPeriod;
        if (!_worker.wait(retry, _receiver.getDescriptors()))
            return;
        if (retry && _clock.now() >= *retry) {
            retry.reset();
            if (!_shortage.survives([this] { open(); }))
                _receiver.close();
        }
        _receiver.receive(*this);
        _counters._dropped.add(_receiver.takeDropped());
    }
}

void OscInput::open()
{
    const std::string problem = _receiver.open(_settings._listen, _settings._bufferBytes);
    {
        const auto addresses = getAddresses();
        const Ostrel::LockGuard guard(_factsLock);
        _listens =
            problem.empty() ? "listens on " + describeOscPlace(addresses) + describeOscReach(addresses) : problem;
    }
    _health(problem);
    if (!problem.empty())
        return;
    const int granted = _receiver.getGrantedBuffer();
    const bool isSmall = granted < _settings._bufferBytes;
    const std::string buffer = " with a receive buffer of " + std::to_string(granted) + " bytes";
    report(osg::LogAlways, "OSC: listening on " + describeOscPlace(getAddresses()) + buffer);
    if (isSmall)
        report(osg::LogNotice, "OSC:" + buffer + " instead of " + std::to_string(_settings._bufferBytes) +
                                   " bursts may be lost; allow more with sysctl net.core.rmem_max=" +
                                   std::to_string(_settings._bufferBytes));
}

std::vector<RemarkInfo> OscInput::getRemarks() const
{
    const std::uint64_t packets = _counters._packets.get(), malformed = _counters._malformed.get(),
                        dropped = _counters._dropped.get();
    std::string received, lost;
    {
        const Ostrel::LockGuard guard(_factsLock);
        received = _listens + "; " + countPackets(packets) + " came";
        if (malformed != 0)
            lost = "; " + countPackets(malformed) + " malformed, the last: " + _lastMalformed;
    }
    if (dropped != 0)
        lost += "; " + countPackets(dropped) + " more dropped by the kernel";
    return _dispatcher.getRemarks(received, packets != 0, lost);
}

bool OscInput::receive(Bytes packet, const SocketAddress& sender, const Time& arrival)
{
    _counters._packets.add();
    _shortage.survives([&] { read(packet, sender, arrival); });
    // One packet may take long where its messages have many patterns: a flood of them must not hold up the stop.
    return !_worker.isStopping();
}

void OscInput::read(Bytes packet, const SocketAddress& sender, const Time& arrival)
{
    const auto problem = readOscPacket(packet, arrival, _dispatcher);
    if (!problem)
        return;
    _counters._malformed.add();
    {
        const Ostrel::LockGuard guard(_factsLock);
        _lastMalformed = *problem;
    }
    if (const auto more = _malformedReports.admit())
        report(osg::LogWarning, "OSC: malformed packet of " + std::to_string(packet.size()) + " bytes from " +
                                    sender.str() + ": " + *problem + *more);
}

} // namespace Trovio::Nodes
