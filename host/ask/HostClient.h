#pragma once

#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace Host {

/// Why a question to a running host has no answer, and the exit code for it.
struct AskError : std::runtime_error {
    AskError(int code, const std::string& text) : std::runtime_error(text), _code(code) {}
    int _code;
};

/// The host has ended in order: its socket is gone.
struct HostEnded : AskError {
    using AskError::AskError;
};

/// One question, as HTTP has it.
struct HostQuestion {
    std::string _target; // path and query, encoded
    std::string _method = "GET";
    std::string _body = {}; // JSON
};

/// "?name=value&…" with everything encoded that could be taken for something else; pairs without a value are left out.
std::string queryText(std::initializer_list<std::pair<const char*, std::string>> pairs);
/// Text as one part of a path or a query.
std::string encoded(std::string_view text);

/// Asks a running host, one question after the other on one connection to its Unix socket.
/// Ownership: owns the connection.
/// Threads:   one.
/// Errors:    AskError, with the host's own words where it refuses: NothingFound for what it does not have, BadUsage
///            for a question that it cannot take, NoAnswer where it says nothing in time, else Failed.
class HostClient {
public:
    /// Connects; `name` stands for the host in messages.
    HostClient(std::string socketPath, std::string name);
    /// A second connection to the same host.
    explicit HostClient(const HostClient* same) : HostClient(same->_path, same->_name) {}
    ~HostClient();
    HostClient(const HostClient&) = delete;
    HostClient& operator=(const HostClient&) = delete;

    /// The body of the answer, at most 256 MiB. Blocks, up to `patience` seconds for each part of it.
    std::string ask(const HostQuestion& question, double patience = 10);

    /// How an answer that comes bit by bit ended: by itself, because `use` had enough or nobody reads standard output
    /// any more, or because the time was over.
    enum class StreamEnd { Complete, Enough, TimeOver };
    using UseLine = std::function<bool(std::string_view line)>;

    /// Hands each line of the answer on as it comes, without its end, and an empty one where none came for a while.
    /// Blocks, up to `seconds` in all, which may be infinite.
    StreamEnd follow(const HostQuestion& question, double seconds, const UseLine& use);

private:
    class Answer;
    int connect();
    void reconnect();
    [[noreturn]] void throwForEnd() const;
    void send(const HostQuestion& question);
    enum class News { Part, Silence, ReaderGone };
    News receive(Answer& answer, double deadline, bool watchesOutput);

    const std::string _path, _name;
    int _socket = -1;
};
} // namespace Host
