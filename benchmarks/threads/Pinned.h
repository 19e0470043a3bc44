#pragma once

#include <pthread.h>
#include <sched.h>
#include <vector>

namespace Bench {

/// The cores that this program may use.
inline std::vector<int> allowedCores()
{
    cpu_set_t set;
    std::vector<int> cores;
    if (sched_getaffinity(0, sizeof set, &set) == 0)
        for (int core = 0; core < CPU_SETSIZE; ++core)
            if (CPU_ISSET(core, &set))
                cores.push_back(core);
    return cores;
}

/// Keeps the calling thread on one core while it lives, and restores what was before.
class Pinned {
public:
    explicit Pinned(int core)
    {
        pthread_getaffinity_np(pthread_self(), sizeof _before, &_before);
        cpu_set_t set;
        CPU_ZERO(&set);
        CPU_SET(core, &set);
        pthread_setaffinity_np(pthread_self(), sizeof set, &set);
    }
    Pinned(const Pinned&) = delete;
    Pinned& operator=(const Pinned&) = delete;
    ~Pinned() { pthread_setaffinity_np(pthread_self(), sizeof _before, &_before); }

private:
    cpu_set_t _before;
};

} // namespace Bench
