#include "explain/text/DisplayWidth.h"
#include "explain/text/Escape.h"
#include "host/ExitCode.h"
#include "host/ask/Columns.h"
#include "host/ask/HostClient.h"
#include "host/ask/LineOutput.h"
#include "host/ask/Steady.h"
#include "host/listen/ListenVerb.h"
#include "host/listen/OscListener.h"
#include "host/run/StopSignal.h"
#include "host/show/DrawnLines.h"
#include "host/show/Terminal.h"
#include "nodes/osc/OscListenPlace.h"
#include "nodes/osc/packet/OscTags.h"

#include <cstdio>
#include <set>
#include <sstream>
#include <unistd.h>

namespace Host {

using namespace Explain;
using namespace Trovio::Nodes;

namespace {

constexpr double interval = 0.25; // seconds from look to look

std::string entryOf(const OscRow& row)
{
    return row._items.empty() ? std::string() : row._address + " " + row._items;
}

/// Rows as lines, with their heading.
std::string table(const std::vector<OscRow>& rows)
{
    std::vector<std::vector<std::string>> lines{{"address", "rate", "types", "guess", "last values"}};
    for (const OscRow& row : rows) {
        char rate[32];
        std::snprintf(rate, sizeof rate, "%.1f/s", row._perSecond);
        lines.push_back({escaped(row._address), rate, shortenOscTags(row._tags), row._items.empty() ? "-" : row._items,
                         row.describeValues()});
    }
    return columns(lines, lines.front().size());
}

/// A text as it stands between the double quotes of a scene file.
std::string inScene(const std::string& text)
{
    std::string written;
    for (const char character : text)
        written += (character == '"' || character == '\\' ? "\\" : "") + std::string(1, character);
    return written;
}

/// The node that would take all of it.
std::string nodeOf(const std::vector<OscRow>& rows, const std::string& place)
{
    std::string entries;
    for (const OscRow& row : rows)
        if (const std::string entry = entryOf(row); !entry.empty())
            entries += (entries.empty() ? "" : ", ") + entry;
    if (entries.empty())
        return {};
    return "To take these, as guessed from their arguments:\n"
           "nodes = [[\"OSC\", \"listen=" +
           place + " " + inScene(quoteOscEntries(entries)) + "\"]]\n";
}

std::string counts(const OscListener& listener)
{
    std::string text = std::to_string(listener.packets()) + " packets";
    const std::pair<std::uint64_t, const char*> others[] = {
        {listener.malformed(), " of them malformed"},
        {listener.dropped(), " more dropped by the system"},
        {listener.traffic().others(), " messages of addresses that found no place here"}};
    for (const auto& [count, what] : others)
        if (count != 0)
            text += ", " + std::to_string(count) + what;
    return text;
}

/// Shows what comes while it comes: a table in place on a terminal, else a line for each address that is new.
class Screen {
public:
    explicit Screen(LineOutput& out) : _out(out), _inPlace(hasCursor(STDOUT_FILENO)) {}

    /// False where nobody reads any more.
    bool show(const std::vector<OscRow>& rows, const std::string& below)
    {
        return _inPlace ? _out.write(drawn(rows, below)) : tellNew(rows);
    }

    /// What takes away what stands there.
    std::string erased() { return _inPlace ? _drawn.erase(width()) : std::string(); }

private:
    static std::size_t width() { return terminalSize(STDOUT_FILENO).value_or(TerminalSize{80, 24})._width; }

    std::string drawn(const std::vector<OscRow>& rows, const std::string& below)
    {
        const TerminalSize size = terminalSize(STDOUT_FILENO).value_or(TerminalSize{80, 24});
        std::string text = _drawn.erase(size._width);
        std::istringstream lines(table(rows));
        std::string line;
        for (std::size_t i = 0; i + 3 < size._height && std::getline(lines, line); ++i)
            text += _drawn.add(line.substr(0, bytesWithin(line, size._width)));
        return text + _drawn.add(below.substr(0, bytesWithin(below, size._width)));
    }

    bool tellNew(const std::vector<OscRow>& rows)
    {
        for (const OscRow& row : rows) {
            const std::string entry = entryOf(row);
            if (_told.insert(entry.empty() ? row._address : entry).second &&
                !_out.put(escaped(row._address) + " " + describeOscTags(row._tags) + " " + row.describeValues() + "; " +
                          (entry.empty() ? "no slot type takes that" : row._title + quoteOscEntries(entry))))
                return false;
        }
        return true;
    }

    LineOutput& _out;
    const bool _inPlace;
    DrawnLines _drawn;
    std::set<std::string> _told;
};

int listen(const std::vector<SocketAddress>& places, const Options& options)
{
    const StopSignal stop;
    LineOutput out;
    OscListener listener;
    if (const std::string problem = listener.open(places); !problem.empty()) {
        std::fprintf(stderr, "%s\n", problem.c_str());
        return Failed;
    }
    std::fprintf(stderr, "listening on %s; Ctrl-C ends it\n", listener.place().c_str());
    Screen screen(out);
    const double end = steadySeconds() + options._seconds;
    for (double now = steadySeconds(); !stop.requested() && now < end; now = steadySeconds())
        if (!screen.show(listener.traffic().rows(), counts(listener)) || !out.wait(std::min(interval, end - now)))
            return Done; // nobody reads it
    listener.stop();
    const auto rows = listener.traffic().rows();
    out.write(screen.erased() + (rows.empty() ? std::string() : table(rows) + nodeOf(rows, options._listen)));
    std::fprintf(stderr, "%s\n", counts(listener).c_str());
    return rows.empty() ? NothingFound : Done;
}
} // namespace

int oscListenVerb(const Options& options)
{
    const auto places = readOscListenPlace(options._listen);
    if (!places.empty())
        return listen(places, options);
    std::fprintf(stderr,
                 "%s is no place to listen on; allowed: a port, which means this machine, or a numeric address and a "
                 "port, such as 9000, 0.0.0.0:9000 or [::]:9000\n",
                 inQuotes(options._listen).c_str());
    return BadUsage;
}
} // namespace Host
