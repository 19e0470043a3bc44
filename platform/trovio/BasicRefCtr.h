#pragma once

#include <atomic>

namespace Trovio {

/// Counts the handles of a pooled object, and lets it wait for its pool (BasicCache). Not polymorphic.
/// Threads: any thread that holds a handle.
class BasicRefCtr {
public:
    BasicRefCtr() = default;
    ~BasicRefCtr() = default;
    BasicRefCtr(const BasicRefCtr&) = delete;
    BasicRefCtr& operator=(const BasicRefCtr&) = delete;

    void incrementReferenceCounter() { _count.fetch_add(1, std::memory_order_relaxed); }

    /// The count that remains. The last one out sees all that the other holders wrote.
    int decrementReferenceCounter() { return _count.fetch_sub(1, std::memory_order_acq_rel) - 1; }

private:
    friend class BasicCache;

    std::atomic<int> _count{0};
    BasicRefCtr* _nextWaiting = nullptr; // while it waits: the one that came back after it, or the first
};

} // namespace Trovio
