#pragma once

#include "nodes/osc/OscSender.h"
#include "nodes/osc/packet/OscPacker.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/NameLookup.h"
#include "nodes/shared/RateLimiter.h"
#include "nodes/shared/Worker.h"
#include "trovio/Node.h"

namespace Trovio::Nodes {

/// Where an OSC node sends to, and what.
struct OscOutSettings {
    Endpoint _target;
    std::vector<OscEntry> _entries;
    unsigned _queue = 1; // records that may wait in each slot
    Gathering _gathering = Gathering::All;
    Bundling _bundling = Bundling::Auto;
};

/// What became of records; shown by the node.
struct OscOutCounters {
    Counter& _messages; // in packets that the system took
    Counter& _packets;
    Counter& _failed;   // messages in packets that the system did not take
    Counter& _refused;  // answers that nobody listens there
    Counter& _replaced; // records of several for one message that newer ones replaced before it was complete
    Counter& _withoutMemory;
};

/// The sending half of an OSC node: in-slots, a thread that writes, packs and sends, and a socket.
/// Nothing here ever makes a producer wait: while the target is unknown, records wait in the slots, the newest of them.
/// Threads: sends on a thread of its own.
class OscOutput {
public:
    /// Called from any thread with the problem; with an empty text once there is none.
    using Health = std::function<void(const std::string& problem)>;

    OscOutput(Clock& clock, std::shared_ptr<NameLookup> lookup, OscOutSettings settings, OscOutCounters& counters,
              Health health);

    void start();
    void stop();

    void forEachSlot(const std::function<void(BasicInSlot&)>& use);

private:
    void run();
    void goOn();
    /// A troubled host may have moved to another address.
    bool isOutdated() const;
    void seekTarget();
    void openSocket(const SocketAddress& target);
    void drain();
    /// When to go on, if no record comes and no packet.
    std::optional<double> getNextTime() const;
    void send(Bytes packet, std::size_t messages);
    /// Reads the errors of earlier packets (nobody listens there), and discards what others send to this socket.
    void listen();
    void refused();
    void fail(const std::string& problem);

    Clock& _clock;
    const std::shared_ptr<NameLookup> _lookup;
    const OscOutSettings _settings;
    OscOutCounters& _counters;
    const Health _health;
    std::vector<std::unique_ptr<OscSender>> _senders;

    // Of the output's thread.
    OscWriter _writer;
    OscPacker _packer;
    FileDescriptor _socket; // connected, so that the system tells when nobody listens
    std::string _target;    // its address as text
    enum class Search { Idle, Asked, Done } _search = Search::Idle; // of a name; Idle for a numeric address
    double _searchTime = 0.0;                                       // when to try or to ask again
    bool _troubled = false;                                         // the last that was heard is bad
    std::optional<double> _wellFrom; // if nothing bad is heard until then, it is well again
    RateLimiter _tooLargeReports;
    MemoryShortage _shortage;

    Worker _worker;
};

} // namespace Trovio::Nodes
