#include "host/listen/OscListener.h"

#include "nodes/osc/OscListenPlace.h"

#include <cstdio>

namespace Host {

using namespace Trovio::Nodes;

namespace {

constexpr int bufferBytes = 8 << 20; // as far as the system grants them
}

OscListener::OscListener() : _worker(Clock::system()) {}

std::string OscListener::open(const std::vector<SocketAddress>& places)
{
    const std::string problem = _receiver.open(places, bufferBytes);
    if (problem.empty())
        _worker.start(
            "osc listen", [this] { run(); },
            [](const std::string& ended) { std::fprintf(stderr, "listening ended: %s\n", ended.c_str()); });
    return problem;
}

void OscListener::stop()
{
    _worker.stop();
    _receiver.receive(*this);
    _dropped += _receiver.takeDropped();
}

std::string OscListener::place() const
{
    const auto addresses = _receiver.getAddresses();
    return describeOscPlace(addresses) + describeOscReach(addresses);
}

void OscListener::run()
{
    while (_worker.wait(std::nullopt, _receiver.getDescriptors())) {
        _receiver.receive(*this);
        _dropped += _receiver.takeDropped();
    }
}

bool OscListener::receive(Bytes packet, const SocketAddress&, const Trovio::Time& arrival)
{
    ++_packets;
    if (readOscPacket(packet, arrival, _traffic))
        ++_malformed;
    return true;
}
} // namespace Host
