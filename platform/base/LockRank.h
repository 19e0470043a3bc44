#pragma once

#include <cstdio>
#include <cstdlib>

namespace Ostrel {

/// The one order in which locks are taken: a thread that holds a lock takes only locks of a higher rank.
/// Two locks of one rank are never held together, but for LockRank::Unranked, which is not checked.
///
/// Why this order: a host thread walks from the registry and the tree down to the slots; a node may hold a lock of its
/// own while it pushes; an out-slot keeps its data lock while its in-slots receive; a receiver may queue for its node;
/// any holder may return a vector to a pool or log. A lock is Unranked only where the reason stands beside it.
enum class LockRank : int {
    Unranked,
    Registry,
    Tree,
    Wiring,
    NodePush, // of a node, held while it pushes
    OutSlotListeners,
    OutSlotData,
    InSlotListeners,
    InSlotData,
    NodeQueue, // of a node: what it keeps for its own thread, and what it tells
    Pool,
    Log,
    Leaf, // nothing at all is taken under it, and no log is written
};

#ifdef OSTREL_CHECK_LOCK_RANKS
/// The ranks that the calling thread holds, one bit each. Ends the process when the order is broken.
class __attribute__((visibility("default"))) HeldRanks {
public:
    static void acquire(LockRank rank)
    {
        if (rank == LockRank::Unranked)
            return;
        if ((_held >> static_cast<int>(rank)) != 0) {
            std::fprintf(stderr, "FATAL: lock of rank %d taken while ranks 0x%x are held\n", static_cast<int>(rank),
                         _held);
            std::abort();
        }
        _held |= 1U << static_cast<int>(rank);
    }

    static void release(LockRank rank)
    {
        if (rank != LockRank::Unranked)
            _held &= ~(1U << static_cast<int>(rank));
    }

private:
    static inline thread_local unsigned _held = 0;
};
#else
class __attribute__((visibility("default"))) HeldRanks {
public:
    static void acquire(LockRank) {}
    static void release(LockRank) {}
};
#endif

} // namespace Ostrel
