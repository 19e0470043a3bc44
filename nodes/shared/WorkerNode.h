#pragma once

#include "nodes/shared/SlotListNode.h"
#include "nodes/shared/Worker.h"

namespace Trovio::Nodes {

/// A node that works on one thread of its own.
/// Threads: run() on that thread, between start() and the end of stop().
class WorkerNode : public SlotListNode {
protected:
    explicit WorkerNode(Clock& clock) : _clock(clock), _worker(clock) {}

    /// The body of the thread; returns soon after _worker.wait() has returned false. What it throws ends the thread.
    virtual void run() = 0;

    /// The thread ended for that reason. On that thread.
    virtual void workEnded(const std::string& reason) { setDegraded(reason); }

    /// Starts the thread, under the name of the node's type.
    void start() override
    {
        _worker.start(
            getTypeName().c_str(), [this] { run(); },
            [this](const std::string& problem) { workEnded("ended: " + problem); });
    }
    void stop() override { _worker.stop(); }

    Clock& _clock;
    Worker _worker;
};

} // namespace Trovio::Nodes
