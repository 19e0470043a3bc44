#include "host/Report.h"

#include "host/SensorReport.h"
#include "host/TreeReport.h"
#include "trovio/Root.h"

namespace Host {
namespace {

constexpr std::size_t mostLines = 20; // of one kind; a large scene says the rest as a number

// Runs a report and lets through its first lines only.
template <class Report>
void limited(const Say& say, const char* what, const Report& report)
{
    std::size_t lines = 0;
    report([&](const std::string& line) {
        if (++lines <= mostLines)
            say(line);
    });
    if (lines > mostLines)
        say("and " + std::to_string(lines - mostLines) + " more " + what);
}
} // namespace

void reportStart(const Session& session, const Say& say)
{
    for (const auto& scene : session.scenes())
        limited(say, "sensors of this kind", [&](const Say& line) { reportUnbound(*scene, line); });
    const Trovio::NamespaceInfo root = Trovio::Root::get().inspect();
    limited(say, "routes", [&](const Say& line) { reportRoutes(root, line); });
    limited(say, "nodes", [&](const Say& line) { reportNodes(root, line); });
}

void reportEnd(const Session& session, const FrameLoop& loop, const Say& say)
{
    for (const auto& scene : session.scenes())
        limited(say, "sensors", [&](const Say& line) { reportValues(*scene, line); });
    const Trovio::NamespaceInfo root = Trovio::Root::get().inspect();
    limited(say, "nodes", [&](const Say& line) { reportCounters(root, line); });
    say("frames: " + std::to_string(loop.frames()) + " run, " + std::to_string(loop.skipped()) + " left out");
}
} // namespace Host
