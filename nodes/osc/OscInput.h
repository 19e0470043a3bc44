#pragma once

#include "nodes/osc/OscDispatcher.h"
#include "nodes/osc/UdpReceiver.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/RateLimiter.h"
#include "nodes/shared/Worker.h"

namespace Trovio::Nodes {

/// Where an OSC node listens, and for what.
struct OscInSettings {
    std::vector<SocketAddress> _listen;
    int _bufferBytes = 0; // asked of the kernel
    std::vector<OscEntry> _entries;
};

/// The receiving half of an OSC node: sockets, a thread, and methods.
/// A port that cannot be had is tried again every few seconds.
/// Threads: messages are read and pushed on a thread of its own.
class OscInput final : UdpPacketVisitor {
public:
    /// Called from any thread with the problem; with an empty text once there is none.
    using Health = std::function<void(const std::string& problem)>;

    OscInput(Clock& clock, OscInSettings settings, OscInCounters& counters, OscDispatcher::Show show, Health health);

    void start();
    void stop();

    void forEachSlot(const std::function<void(BasicOutSlot&)>& use) { _dispatcher.forEachSlot(use); }

    /// Why slots have no values, or not all: where it listens, what came, and what that was. Any thread, under any lock
    /// but the log's; also after stop().
    std::vector<RemarkInfo> getRemarks() const OSTREL_EXCLUDES(_factsLock);

    /// What it is bound to, once start() returned; for tests, and for port 0.
    std::vector<SocketAddress> getAddresses() const { return _receiver.getAddresses(); }

private:
    void run();
    void open();
    bool receive(Bytes packet, const SocketAddress& sender, const Time& arrival) override;
    void read(Bytes packet, const SocketAddress& sender, const Time& arrival);

    Clock& _clock;
    const OscInSettings _settings;
    OscInCounters& _counters;
    const Health _health;
    OscDispatcher _dispatcher;
    UdpReceiver _receiver;
    RateLimiter _malformedReports;
    MemoryShortage _shortage;

    mutable Ostrel::Mutex _factsLock{Ostrel::LockRank::Leaf};
    std::string _listens OSTREL_GUARDED_BY(_factsLock) = "does not listen";
    std::string _lastMalformed OSTREL_GUARDED_BY(_factsLock); // what was wrong with it

    Worker _worker;
};

} // namespace Trovio::Nodes
