#pragma once

#include "monitor/answer/Question.h"
#include "monitor/server/net/RequestHead.h"
#include "monitor/server/streams/Stream.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>

namespace Monitor {

/// The rest of a connection, for whoever answers a request: one of the two, once. Threads: the server's.
class Exchange {
public:
    virtual ~Exchange() = default;
    virtual void reply(Answer answer) = 0;
    /// Answers with a body without an end, in lines of JSON.
    virtual void replyWith(std::unique_ptr<Stream> stream) = 0;
    /// Becomes true where the client goes before its answer. Any thread reads it.
    virtual std::shared_ptr<const std::atomic<bool>> gone() const = 0;
};

/// Who answers what comes in. Threads: the server's.
class Service {
public:
    virtual ~Service() = default;
    /// Why a request is not even read; nothing where it may pass.
    virtual std::optional<Answer> refusal(const RequestHead& head, Door door) = 0;
    /// A whole request, which may be answered later.
    virtual void ask(const RequestHead& head, Door door, std::string body, std::shared_ptr<Exchange> exchange) = 0;
    /// Serves a WebSocket. Sets the subprotocol, which is one of those that the head offers.
    virtual std::unique_ptr<Stream> openSocket(const RequestHead& head, Door door, std::string& subprotocol) = 0;
    /// Called again and again while there are clients.
    virtual void tick() = 0;
    /// The time to the next tick.
    virtual std::chrono::milliseconds pace() const = 0;
};
} // namespace Monitor
