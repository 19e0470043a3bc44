#include "trovio/routing/Connection.h"

#include "trovio/routing/RouteProblems.h"

namespace Trovio {

std::string connect(const ResolvedRoute& route, const SlotView& to)
{
    const SlotView& source = *route._source;
    const bool inGraph = joinsRelays(source, to);
    const Relay::Key key = jointOf(route, to);
    if (inGraph) {
        const auto loop = source._ref._relay->connect(*to._ref._relay, key, {&source._label, &to._label});
        if (!loop.empty())
            return closesLoop(*route._route, loop);
    }
    try {
        source._ref.out()->connect(to._ref.in());
    } catch (...) {
        if (inGraph)
            source._ref._relay->disconnect(*to._ref._relay, key);
        throw;
    }
    ++route._route->_connections;
    return {};
}

bool disconnect(const ResolvedRoute& route, const SlotView& to) noexcept
{
    const SlotView& source = *route._source;
    source._ref.out()->disconnect(to._ref.in());
    --route._route->_connections;
    return joinsRelays(source, to) && source._ref._relay->disconnect(*to._ref._relay, jointOf(route, to));
}

} // namespace Trovio
