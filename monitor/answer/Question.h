#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Monitor {

class SlotCodec;

/// What a client asks, after the server has judged who may: "GET /why?from=a&to=b".
struct Question {
    std::string _method;
    std::string _path; // decoded, as the values of the query
    std::map<std::string, std::string> _query;
    std::string _body;
    std::string _accept;    // kinds of text that the client takes, as HTTP writes them; for /metrics
    bool _mayWrite = false; // else what changes something is refused with 403
    /// Whether nobody waits for the answer any more: the client has gone, or at least says nothing more, or the server
    /// ends. Who takes long asks this a few times a second, and then gives up. Any thread; may be empty.
    std::function<bool()> _isOver;
    const SlotCodec* _codec = nullptr; // whose message the body of a publication is; null for JSON
    bool _mayWait = true;              // for a frame; else the answer is only that it would have to
};

struct Answer {
    int _status = 200; // as in HTTP
    std::string _type = "application/json";
    std::string _body;
    std::vector<std::pair<std::string, std::string>> _fields{}; // of the head, beside or in place of the usual ones
    bool _hasToWait = false; // nothing was done: ask again where that may wait for a frame
};

/// {"error": …}
Answer errorAnswer(int status, const std::string& text);
} // namespace Monitor
