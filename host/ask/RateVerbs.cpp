#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/LineOutput.h"
#include "host/ask/Steady.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

namespace Host {
namespace {

constexpr double interval = 1; // seconds from line to line

/// How often the source of a slot has written since the line before, by its own counter.
struct Rate {
    std::uint64_t _records;
    double _seconds;

    double perSecond() const { return static_cast<double>(_records) / _seconds; }
};

class RateMeter {
public:
    RateMeter(HostClient& host, const std::string& name) : _host(host), _before(askSlots(host, name)) {}

    const std::string& label() const { return _before._slots.front()._label; }

    /// Since the last call. Throws AskError where the slot is gone.
    Rate next()
    {
        HostSlots now = askSlots(_host, label());
        const std::uint64_t records = now._slots.front()._records, before = _before._slots.front()._records;
        // One that was made anew has begun anew.
        const Rate rate{records - (before <= records ? before : 0), now._time - _before._time};
        _before = std::move(now);
        return rate;
    }

private:
    HostClient& _host;
    HostSlots _before; // the one slot
};

template <class... Values>
std::string formatted(const char* format, Values... values)
{
    char text[160];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

// 1234567.8 as "1.23 MB/s"
std::string bytesPerSecond(double bytes)
{
    const char* const units[] = {"B/s", "kB/s", "MB/s", "GB/s"};
    std::size_t unit = 0;
    for (; bytes >= 999.5 && unit + 1 < std::size(units); ++unit)
        bytes /= 1000;
    return formatted("%.3g %s", bytes, units[unit]);
}

// Bytes of records that went by.
class Sizes {
public:
    void take(std::string_view line)
    {
        const auto record = nlohmann::json::parse(line, nullptr, false);
        if (!record.is_object() || !record.contains("bytes"))
            return;
        ++_records;
        _bytes += record["bytes"].get<std::uint64_t>();
    }
    /// Of those since the last call; where there were none, as before.
    double takeMean()
    {
        if (_records > 0)
            _mean = static_cast<double>(std::exchange(_bytes, 0)) / static_cast<double>(std::exchange(_records, 0));
        return _mean;
    }

private:
    std::uint64_t _records = 0, _bytes = 0;
    double _mean = 0;
};

std::string bandwidthLine(const Rate& rate, double meanSize)
{
    return bytesPerSecond(rate.perSecond() * meanSize) +
           formatted(" (%.2f records/s of %.1f bytes in the mean)", rate.perSecond(), meanSize);
}
} // namespace

int hzVerb(const Options& options)
{
    return followHost(options, [&options](HostClient& host) {
        LineOutput out;
        RateMeter meter(host, options._label);
        for (std::uint64_t left = options._count; left > 0 && out.wait(interval); --left) {
            const Rate rate = meter.next();
            if (!out.put(formatted("%.2f records/s (%llu in %.4f s)", rate.perSecond(),
                                   static_cast<unsigned long long>(rate._records), rate._seconds)))
                break;
        }
        return Done;
    });
}

// The number is the source's own; the size is that of the records that a second connection looks at, all or not.
int bwVerb(const Options& options)
{
    return followHost(options, [&options](HostClient& host) {
        LineOutput out;
        RateMeter meter(host, options._label);
        Sizes sizes;
        std::uint64_t left = options._count;
        double next = steadySeconds() + interval;
        HostClient watching(&host);
        const auto end =
            watching.follow({"/stream" + queryText({{"label", meter.label()}, {"form", "bytes"}})}, options._seconds,
                            [&](std::string_view line) {
                                sizes.take(line);
                                if (steadySeconds() < next)
                                    return true;
                                next += interval;
                                return out.put(bandwidthLine(meter.next(), sizes.takeMean())) && --left > 0;
                            });
        if (end == HostClient::StreamEnd::Complete)
            throw HostEnded(Failed, "the host has ended, or has no such slot any more");
        return Done;
    });
}
} // namespace Host
