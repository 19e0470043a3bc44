#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Monitor {

/// How a client came in. Loopback and Network are TCP.
enum class Door { Unix, Loopback, Network };

/// What the first line and the fields of a request say, before its body is read.
struct RequestHead {
    std::string _method;
    std::string _path;                         // decoded
    std::map<std::string, std::string> _query; // decoded
    std::string _host;                         // as they were sent, as the following
    std::string _origin;
    std::string _authorization;
    std::string _accept;
    std::string _knownTags;                 // versions that the client has: If-None-Match
    std::vector<std::string> _subprotocols; // that a WebSocket offers
    bool _wantsWebSocket = false;
};

/// The path and the values of "/why?from=a%20b", into `head`. False where a '%' has not two hexadecimal digits behind
/// it.
bool readTarget(std::string_view target, RequestHead& head);

/// "a, b" as texts without blanks; those of a list that a field holds.
std::vector<std::string> readList(std::string_view field);
} // namespace Monitor
