#pragma once

#include "base/Mutex.h"
#include "nodes/shared/NameLookup.h"
#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace Trovio::Nodes {

/// A name server that is asked for one host, and whose answers the test gives. Threads: any.
class FakeLookup final : public NameLookup {
public:
    explicit FakeLookup(std::string host) : _host(std::move(host)) {}

    void begin(const std::string& host, std::uint16_t) override
    {
        EXPECT_EQ(host, _host);
        ++_begun;
    }
    std::optional<Answer> poll() override
    {
        const Ostrel::LockGuard guard(_lock);
        return std::exchange(_answer, std::nullopt);
    }
    void cancel() override { _cancelled = true; }

    void answer(const Answer& answer)
    {
        const Ostrel::LockGuard guard(_lock);
        _answer = answer;
    }

    std::atomic<int> _begun{0};
    std::atomic<bool> _cancelled{false};

private:
    const std::string _host;
    Ostrel::Mutex _lock;
    std::optional<Answer> _answer OSTREL_GUARDED_BY(_lock);
};

} // namespace Trovio::Nodes
