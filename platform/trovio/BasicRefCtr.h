#pragma once

#include <atomic>

namespace Trovio {

/// Counts the handles of a pooled object. Not polymorphic.
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
    std::atomic<int> _count{0};
};

} // namespace Trovio
