#pragma once

#include "base/Mutex.h"

#include <string>
#include <utility>

namespace Trovio::Nodes {

/// How a node stands with its device or broker, in words, for who asks why nothing comes. Threads: any.
class Fact {
public:
    void set(std::string text) OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        _text = std::move(text);
    }

    std::string get() const OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        return _text;
    }

private:
    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::string _text OSTREL_GUARDED_BY(_lock);
};

} // namespace Trovio::Nodes
