#pragma once

#include "tests/explorer/Scheduler.h"

// The product's ranks, held by fibres instead of threads, and a failure where their order is broken.
#define HeldRanks HeldRanksOfThread
#include "../../../../platform/base/LockRank.h"
#undef HeldRanks

namespace Ostrel {

class HeldRanks {
public:
    static void acquire(LockRank rank)
    {
        if (rank == LockRank::Unranked)
            return;
        unsigned& held = Explorer::Scheduler::heldRanks();
        Explorer::expect((held >> static_cast<int>(rank)) == 0, "locks were taken against their order");
        held |= 1U << static_cast<int>(rank);
    }
    static void release(LockRank rank)
    {
        if (rank != LockRank::Unranked)
            Explorer::Scheduler::heldRanks() &= ~(1U << static_cast<int>(rank));
    }
};

} // namespace Ostrel
