#pragma once

#include "nodes/shared/RateLimiter.h"
#include "trovio/Node.h"
#include <functional>
#include <new>
#include <string>

namespace Trovio::Nodes {

/// Lets a node outlive a moment without memory: what it was at is given up or tried again, counted and said, and the
/// node goes on.
/// Threads: one, the one whose work it is; the counter is for any.
class MemoryShortage {
public:
    static constexpr double Pause = 0.1; // seconds until work that could not be done is tried again

    /// what: how the log calls the node, or the part of it.
    MemoryShortage(Clock& clock, Counter& counter, std::string what)
        : MemoryShortage(clock, counter, [text = std::move(what)] { return text; })
    {
    }
    /// The same for a name that is not known yet: it is asked for when there is something to say.
    MemoryShortage(Clock& clock, Counter& counter, std::function<std::string()> what)
        : _counter(counter), _what(std::move(what)), _reports(clock)
    {
    }

    /// Does a part of the work. False if there was no memory for it.
    template <class Work>
    bool survives(Work&& work)
    {
        try {
            work();
            return true;
        } catch (const std::bad_alloc&) {
            note();
            return false;
        }
    }

    /// For work whose end was caught elsewhere.
    void note() noexcept;

private:
    Counter& _counter;
    const std::function<std::string()> _what;
    RateLimiter _reports;
};

} // namespace Trovio::Nodes
