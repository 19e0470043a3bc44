#include "explain/HangingNode.h"

#include "explain/text/Escape.h"

#include <algorithm>

namespace Explain {

using Trovio::NodeMove;

namespace {

constexpr double first = 1, every = 5; // seconds

double secondsOf(const NodeMove::Info& move)
{
    return std::chrono::duration<double>(NodeMove::Clock::now() - move._since).count();
}

const char* doneOf(NodeMove::Kind kind)
{
    switch (kind) {
    case NodeMove::Kind::IsConfigured:
        return "taken its settings";
    case NodeMove::Kind::Starts:
        return "started";
    case NodeMove::Kind::Stops:
        return "stopped";
    case NodeMove::Kind::IsDestroyed:
        return "been destroyed";
    }
    return "come back"; // not reached
}
} // namespace

std::string described(const NodeMove::Info& move)
{
    const double seconds = secondsOf(move);
    return "node " + inQuotes(move._label) + " has not " + doneOf(move._kind) +
           (seconds < first ? " yet" : " for " + std::to_string(static_cast<long>(seconds)) + " s");
}

std::string HangingNode::news()
{
    const auto move = NodeMove::longest();
    if (!move)
        return {};
    // One node may do one thing after another, and two may have one label.
    if (!_told || move->_since != _told->_since || move->_kind != _told->_kind || move->_label != _told->_label)
        _next = first;
    _told = move;
    const double seconds = secondsOf(*move);
    if (seconds < _next)
        return {};
    _next = std::max(_next, seconds - every) + every;
    return described(*move);
}
} // namespace Explain
