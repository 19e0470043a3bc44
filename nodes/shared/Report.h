#pragma once

#include "nodes/shared/Clock.h"
#include "osg/LogRecord.h"
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace Trovio::Nodes {

/// A place in the source: where its current() is called, also as a default argument. (clang 14 has no source_location.)
struct Place {
    const char* _file;
    unsigned _line;
    const char* _function;

    static constexpr Place current(const char* file = __builtin_FILE(), unsigned line = __builtin_LINE(),
                                   const char* function = __builtin_FUNCTION())
    {
        return {file, line, function};
    }
};

/// Writes one line, with module "Trovio" and the caller's place, if the log's level admits it. Not under the log lock.
void report(osg::LogLevel level, const std::string& text, const Place& where = Place::current());

/// Lets one event through, and then none until a period has passed: for reports that others can cause at will.
/// Threads: one.
class Seldom {
public:
    Seldom(Clock& clock, double period) : _clock(clock), _period(period) {}

    /// If the event may be reported: how many before it could not.
    std::optional<std::uint64_t> admit()
    {
        const double now = _clock.now();
        if (_next && now < *_next) {
            ++_withheld;
            return std::nullopt;
        }
        _next = now + _period;
        return std::exchange(_withheld, 0);
    }

private:
    Clock& _clock;
    const double _period; // seconds
    std::optional<double> _next;
    std::uint64_t _withheld = 0;
};

} // namespace Trovio::Nodes
