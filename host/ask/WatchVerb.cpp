#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/HostSensors.h"
#include "host/ask/LineOutput.h"
#include "host/ask/Steady.h"
#include "host/run/StopSignal.h"
#include "host/show/Terminal.h"
#include "trovio/Time.h"

#include <sstream>
#include <unistd.h>

namespace Host {
namespace {

constexpr double askInterval = 0.25, keyInterval = 0.05; // seconds

/// The table of one set of sensors.
class HostTable {
public:
    HostTable(HostClient& host, const Options& options)
    {
        auto sensors = std::make_unique<HostSensors>(host);
        _sensors = sensors.get();
        const bool inPlace = hasCursor(STDOUT_FILENO);
        auto keyboard = inPlace ? std::make_unique<Keyboard>() : nullptr;
        _view = makeTableView(_text, {inPlace, nullptr, std::move(keyboard), {}}, std::move(sensors),
                              SensorFilter(options._filter));
    }

    /// False where the host has other sensors now.
    bool ask(double now) { return _sensors->ask(now); }

    /// What is to be written by now.
    std::string frame(double now)
    {
        _view->frame(now);
        return std::exchange(_text, std::ostringstream()).str();
    }

private:
    std::ostringstream _text;
    HostSensors* _sensors; // the view's
    std::unique_ptr<View> _view;
};
} // namespace

int watchVerb(const Options& options)
{
    return followHost(options, [&options](HostClient& host) {
        const StopSignal stop; // so that the terminal gets its settings back
        LineOutput out;
        auto table = std::make_unique<HostTable>(host, options);
        for (double next = 0; !stop.requested();) {
            const double now = Trovio::Time::getCurrentTime().getSeconds();
            if (steadySeconds() >= next) {
                next = steadySeconds() + askInterval;
                if (!table->ask(now))
                    table = std::make_unique<HostTable>(host, options);
            }
            if (!out.write(table->frame(now)) || !out.wait(keyInterval))
                break;
        }
        return Done;
    });
}
} // namespace Host
