#include "host/report/Report.h"

#include "explain/Counts.h"
#include "explain/TreeReport.h"
#include "explain/text/JsonText.h"
#include "explain/text/TextWrap.h"
#include "host/report/SensorReport.h"
#include "trovio/Root.h"

#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

// Lines of one kind; a large scene says the rest as a number.
constexpr std::size_t maxLinesAtStart = 20, maxLinesAtEnd = 200;

// Runs a report and lets through its first lines only.
template <class Report>
void limited(const Say& say, std::size_t maxLines, const char* what, const Report& report)
{
    std::size_t lines = 0;
    report([&](const std::string& line) {
        if (++lines <= maxLines)
            say(line);
    });
    if (lines > maxLines)
        say("and " + std::to_string(lines - maxLines) + " more " + what);
}

Say broken(std::size_t width, const Say& say)
{
    constexpr std::size_t indent = 4;
    return [width, &say](const std::string& text) {
        for (const std::string& line : wrapped(text, width, indent))
            say(line);
    };
}
} // namespace

void reportStart(const Session& session, std::size_t width, const Say& sayLine)
{
    const Say say = broken(width, sayLine);
    const Trovio::NamespaceInfo root = Trovio::Root::get().inspect();
    for (const auto& scene : session.scenes())
        limited(say, maxLinesAtStart, "sensors without connection",
                [&](const Say& line) { reportUnbound(*scene, root, line); });
    limited(say, maxLinesAtStart, "routes", [&](const Say& line) { reportRoutes(root, line); });
    limited(say, maxLinesAtStart, "nodes", [&](const Say& line) { reportNodes(root, line); });
}

void reportEnd(const Session& session, const RunTotals& totals, std::size_t width, const Say& sayLine)
{
    const Say say = broken(width, sayLine);
    for (const auto& scene : session.scenes())
        limited(say, maxLinesAtEnd, "sensors", [&](const Say& line) { reportValues(*scene, totals._now, line); });
    limited(say, maxLinesAtEnd, "slots", [&](const Say& line) { reportSlots(totals._root, width, line); });
    limited(say, maxLinesAtEnd, "nodes", [&](const Say& line) { reportCounters(totals._root, line); });
    limited(say, maxLinesAtEnd, "remarks", [&](const Say& line) { reportRemarks(totals._root, line); });
    for (const auto& scene : session.scenes())
        limited(say, maxLinesAtEnd, "handlers and nodes", [&](const Say& line) {
            for (const std::string& missing : scene->missingLines())
                line(missing + "; the run went without it");
        });
    say("frames: " + std::to_string(totals._frames) + " run, " + std::to_string(totals._leftOut) + " left out");
}

std::string countsLine(const Session& session, const RunTotals& totals)
{
    const nlohmann::ordered_json counts{{"frames", totals._frames},
                                        {"leftOut", totals._leftOut},
                                        {"sensors", sensorsJson(session, totals._now)},
                                        {"slots", slotsJson(totals._root)},
                                        {"nodes", nodesJson(totals._root)}};
    return jsonText(nlohmann::ordered_json{{"counts", counts}}) + "\n";
}
} // namespace Host
