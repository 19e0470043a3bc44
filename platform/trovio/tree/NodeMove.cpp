#include "trovio/NodeMove.h"

#include "base/Mutex.h"
#include <new>

namespace Trovio {

using Ostrel::LockGuard;

namespace {

Ostrel::Mutex movesLock(Ostrel::LockRank::Leaf);
NodeMove* newest OSTREL_GUARDED_BY(movesLock) = nullptr;

} // namespace

NodeMove::NodeMove(const std::string& label, Kind kind) noexcept : _info{{}, kind, Clock::now()}
{
    try {
        _info._label = label;
    } catch (const std::bad_alloc&) {
        _info._label.clear();
    }
    const LockGuard guard(movesLock);
    _next = newest;
    newest = this;
}

NodeMove::~NodeMove()
{
    const LockGuard guard(movesLock);
    NodeMove** place = &newest;
    while (*place != this)
        place = &(*place)->_next;
    *place = _next;
}

std::optional<NodeMove::Info> NodeMove::longest()
{
    const LockGuard guard(movesLock);
    const NodeMove* oldest = newest;
    while (oldest && oldest->_next)
        oldest = oldest->_next;
    return oldest ? std::optional(oldest->_info) : std::nullopt;
}

} // namespace Trovio
