#include "scene/change/WrittenHandler.h"

#include "scene/file/ConversionParts.h"

#include <stdexcept>

namespace Scenes {

WrittenHandler writtenHandler(const HandlerEntry& handler)
{
    std::size_t filters = 0;
    for (const RouteConversion& conversion : handler._conversions)
        filters += conversion._filters;
    WrittenHandler written;
    written._nodes.assign(handler._nodes.begin(), handler._nodes.end() - static_cast<std::ptrdiff_t>(filters));
    const std::size_t routes = handler._routes.size() - filters;
    for (std::size_t i = 0; i < routes; ++i)
        written._routes.push_back({handler._routes[i]._first, handler._routes[i]._second, {}});
    std::size_t last = routes; // behind the routes of the conversions so far, of which the last one leads to the end
    for (const RouteConversion& conversion : handler._conversions) {
        last += conversion._filters;
        written._routes[conversion._route]._to = handler._routes[last - 1]._second;
        written._routes[conversion._route]._conversion = conversion._text;
    }
    return written;
}

void setWritten(HandlerEntry& handler, WrittenHandler written)
{
    handler._nodes = std::move(written._nodes);
    handler._routes.clear();
    handler._conversions.clear();
    for (WrittenRoute& route : written._routes) {
        if (!route._conversion._value.empty())
            handler._conversions.push_back({handler._routes.size(), std::move(route._conversion)});
        handler._routes.push_back({std::move(route._from), std::move(route._to)});
    }
}

WrittenHandler::Filter WrittenHandler::filterOf(std::size_t node) const
{
    std::size_t left = node - _nodes.size();
    for (std::size_t i = 0; i < _routes.size(); ++i) {
        const std::string& text = _routes[i]._conversion._value;
        const std::size_t filters = text.empty() ? 0 : conversionParts(text).size();
        if (left < filters)
            return {i, left};
        left -= filters;
    }
    throw std::logic_error("the handler has no such node");
}
} // namespace Scenes
