#include "host/show/RunView.h"

#include "host/show/Terminal.h"

#include <unistd.h>

namespace Host {

bool drawsTable(const Options& options)
{
    return !options._quiet &&
           (options._format == Format::Table || (options._format == Format::Automatic && hasCursor(STDOUT_FILENO)));
}

std::unique_ptr<View> makeRunView(const Options& options, const Scenes::Session& session, RunLog& log,
                                  RunOutput& output, double start, const RunKeys& keys)
{
    const bool inPlace = hasCursor(STDOUT_FILENO);
    if (options._quiet)
        return std::make_unique<View>();
    if (options._format == Format::Json)
        return makeJsonView(output.values());
    if (drawsTable(options)) {
        auto keyboard = inPlace && !keys._areElsewhere ? std::make_unique<Keyboard>() : nullptr;
        return makeTableView(output.values(),
                             {inPlace, inPlace && isatty(STDERR_FILENO) ? &log : nullptr, std::move(keyboard),
                              [&output] { return output.isTaken(); }, keys._status},
                             watchedSensors(session.watches()), SensorFilter(options._filter));
    }
    return makeLinesView(output.values(), start);
}
} // namespace Host
