#pragma once

#include "monitor/server/Service.h"
#include "monitor/server/net/Descriptor.h"
#include "monitor/server/net/Limits.h"

#include <functional>
#include <memory>

namespace Monitor {

/// The network: takes clients in, reads what they ask, and sends what they get. One thread moves it.
/// Ownership: refers to the service, which must live as long; owns the connections, and with them the streams.
class Transport {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// Throws std::system_error where the system has no descriptor left.
    explicit Transport(Service& service, const Limits& limits = {}, Clock now = std::chrono::steady_clock::now);
    ~Transport();
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    /// Takes in clients of a socket that listens. Before run().
    void listen(Descriptor socket, Door door);
    /// Takes in a socket that is connected.
    void adopt(Descriptor socket, Door door);

    /// Does all that comes until stop() is called.
    void run();
    /// Ends run(), or does so at once when it begins, and the streams before. Any thread.
    void stop();
    /// Does on the thread of run() what it is given, unless run() has ended. Any thread.
    void post(std::function<void()> work);
    /// The next round is to come as soon as the service asks for now.
    void hurry();

    /// Does what can be done now, and ends what took too long; for who moves it by hand.
    void poll();

private:
    class State;
    const std::unique_ptr<State> _state;
};
} // namespace Monitor
