#pragma once

#include "nodes/serial/LineDispatcher.h"
#include "nodes/serial/LineReader.h"
#include "nodes/serial/SerialSettings.h"
#include "nodes/serial/StablePaths.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/WorkerNode.h"
#include "nodes/text/Fact.h"
#include "nodes/text/ReadyWatch.h"

namespace Trovio::Nodes {

/// What became of records that were to be written; shown by the node.
struct SerialOutCounters {
    Counter& _lines;  // that the system took whole
    Counter& _failed; // records that no line can carry, or whose device was gone in the middle
};

/// A serial device that speaks in lines: a sensor board, a microcontroller. Each label is a slot.
/// Its slots stay when the device is unplugged; then the node is degraded, until the device is there again.
/// Ownership: owns its slots; routes refer to them only while the node stands in a namespace.
/// Threads:   one thread reads, pushes and writes.
class SerialNode final : public WorkerNode {
public:
    explicit SerialNode(Clock& clock, StablePaths stablePaths = StablePaths());
    ~SerialNode() override;

    static const NodeTypeEntry& getEntry();

    /// For each out-slot that nothing reached, or not all: what came instead.
    std::vector<RemarkInfo> getRemarks() const override;

private:
    void configure(const Settings& settings) override;
    void start() override;
    void stop() override;

    void run() override;
    /// Opens, reads and writes as far as it goes without waiting.
    void goOn();
    void open();
    void lose();
    void receive();
    void send();
    bool sendOne(TextSender& sender);
    /// Writes what is left of a line. True if nothing is left, and the device is there.
    bool flush();
    void setProblem(const std::string& problem);

    const StablePaths _stablePaths;
    LineCounters _inCounters;
    SerialOutCounters _outCounters;
    MemoryShortage _shortage;
    RateLimiter _failureReports;

    // Unchanged while the node runs.
    SerialSettings _settings;
    std::unique_ptr<LineDispatcher> _dispatcher;
    std::vector<std::unique_ptr<TextSender>> _senders;

    // Of the node's thread.
    SerialPort _port;
    ReadyWatch _ready; // for the port
    LineReader _reader;
    TextRecord _record;
    std::string _unwritten; // rest of the line that is being written
    double _nextTry = 0.0;

    Fact _fact; // of the device
};

} // namespace Trovio::Nodes
