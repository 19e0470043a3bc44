#pragma once

#include "monitor/server/net/RequestHead.h"

#include <optional>
#include <string>

namespace Monitor {

/// Who may ask and who may change: all on the Unix socket; on TCP reading only, by programs of this machine and by no
/// foreign page; with the token the rest. Immutable, so any thread.
class WhoMay {
public:
    /// `token` opens the doors of the network for reading and, where `write`, every door for writing; empty for none.
    WhoMay(std::string token, bool write) : _token(std::move(token)), _write(write) {}

    /// Why the request is refused, with the cure; nothing where it may pass.
    /// isPublic: what is asked for is the same for everybody, so that no token is needed to read it.
    std::optional<std::string> refusal(const RequestHead& head, Door door, bool isPublic = false) const;

    /// Whether what comes by this request may change something.
    bool mayWrite(const RequestHead& head, Door door) const;

private:
    bool hasToken(const RequestHead& head) const;

    const std::string _token;
    const bool _write;
};

/// 128 bits as hexadecimal digits. Throws std::system_error where the system has none.
std::string newToken();
} // namespace Monitor
