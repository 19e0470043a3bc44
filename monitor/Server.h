#pragma once

#include "monitor/SceneView.h"
#include <memory>
#include <string>
#include <vector>

namespace Monitor {

struct ServerOptions {
    std::string listen{};       // "127.0.0.1:8765", "localhost" for IPv4 and IPv6; empty for the Unix socket alone
    bool write = false;         // who comes by TCP with the token may change things, too
    SceneView scene{};          // what the program knows beyond the tree
    std::string socketFolder{}; // of the Unix socket; empty for the one where ostrel-host looks
};

/// Answers what people, programs and viewers ask of this process: on a Unix socket, where its user may do everything,
/// and where asked on TCP, for reading. Without clients it does nothing at all.
/// Ownership: owns its threads and taps. Made while Trovio's root is open, and destroyed before
///            Trovio::Root::shutdown().
/// Threads:   made and destroyed by one thread, which it never holds up for long; the rest from any.
class Server {
public:
    /// A door that cannot be opened is a warning in the log, and in problems(); the others serve. Throws
    /// std::logic_error where the root is not open, std::system_error where the system gives no thread or descriptor.
    explicit Server(ServerOptions options = {});
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Empty where it could not be made.
    std::string socketPath() const;
    /// Of TCP, where clients ask: "http://127.0.0.1:8765/", with a token where one is needed for anything.
    std::vector<std::string> addresses() const;
    /// Why a door is not open, a line each.
    std::vector<std::string> problems() const;

private:
    class State;
    const std::unique_ptr<State> _state;
};
} // namespace Monitor
