#pragma once

#include "nodes/generator/Signal.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/WorkerNode.h"

namespace Trovio::Nodes {

/// Pushes made-up values at a steady rate: waves for any numeric type, test patterns for images.
/// Invariant: record k carries the value for k / rate seconds and the time at which it was due. A generator that fell
///            behind catches up, but leaves out what is more than a second late.
/// Ownership: owns its slot; routes refer to it only while the node stands in a namespace.
/// Threads:   values are pushed on the node's own thread.
class Generator final : public WorkerNode {
public:
    explicit Generator(Clock& clock);
    ~Generator() override;

    static const NodeTypeEntry& getEntry();

private:
    void configure(const Settings& settings) override;
    void start() override;
    void run() override;
    void produceDue();
    double dueTime() const { return _startTime + static_cast<double>(_next) / _rate; }
    bool isDone() const { return _count != 0 && _next >= _count; }

    Counter& _records;
    Counter& _skipped;
    MemoryShortage _shortage;

    // Unchanged while the node runs.
    std::unique_ptr<Signal> _signal;
    double _rate = 1.0;
    std::uint64_t _count = 0; // 0: endless

    // Of the node's thread.
    double _startTime = 0.0;
    std::uint64_t _next = 0; // number of the record that comes next
};

} // namespace Trovio::Nodes
