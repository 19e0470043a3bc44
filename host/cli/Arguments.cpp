#include "host/cli/Arguments.h"

#include "explain/text/Escape.h"
#include "explain/text/ListenAddress.h"
#include "explain/text/NameHint.h"
#include "host/cli/CommandLine.h"
#include "host/show/SensorFilter.h"
#include "scene/file/SceneFile.h"

#include "trovio/routing/Pattern.h"

#include <CLI/App.hpp>
#include <algorithm>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

// CLI11's own range lets NaN through.
CLI::Validator between(double above, double upTo, const std::string& what)
{
    return CLI::Validator(
        [=](std::string& text) -> std::string {
            double number = 0;
            if (CLI::detail::lexical_cast(text, number) && number > above && number <= upTo)
                return {};
            return inQuotes(text) + " is not " + what;
        },
        std::string());
}

CLI::Validator filterText()
{
    return CLI::Validator(
        [](std::string& text) -> std::string {
            if (!text.empty() && text.size() <= SensorFilter::MaxLength)
                return {};
            return inQuotes(text) + " is not a text of 1 to " + std::to_string(SensorFilter::MaxLength) + " bytes";
        },
        std::string());
}

CLI::Validator labelPattern()
{
    return CLI::Validator(
        [](std::string& text) -> std::string {
            if (!text.empty() && text.size() <= Trovio::MaxLabelLength)
                return {};
            return inQuotes(text) + " is not a pattern of 1 to " + std::to_string(Trovio::MaxLabelLength) + " bytes";
        },
        std::string());
}

CLI::Validator listenAddress()
{
    return CLI::Validator(
        [](std::string& text) -> std::string {
            return ListenAddress::read(text) ? std::string() : inQuotes(text) + " is not " + ListenAddress::Allowed;
        },
        std::string());
}

// An option that takes one of several names of formats.
void addFormat(CLI::App& app, const std::string& option, const char* help, Format& format,
               std::initializer_list<std::pair<const char*, Format>> table)
{
    const auto read = [option, &format, rows = std::vector(table)](const std::string& name) {
        std::vector<std::string_view> names;
        for (const auto& [known, value] : rows) {
            names.push_back(known);
            if (name == known)
                format = value;
        }
        if (std::ranges::find(names, name) == names.end())
            throw CLI::ValidationError(option, inQuotes(name) + " is no format; allowed: " + listed(names) +
                                                   nearestHint(name, names));
    };
    app.add_option_function<std::string>(option, read, help)->type_name("FORMAT");
}

void addSeconds(CLI::App& app, const char* option, const char* help, double& seconds)
{
    app.add_option(option, seconds, help)->type_name("S")->check(between(0, 1e9, "a number of seconds above 0"));
}

void addFilter(CLI::App& app, Options& options)
{
    app.add_option("--filter", options._filter,
                   "show only sensors with this text in their name or label; '*' stands for any text")
        ->type_name("PATTERN")
        ->check(filterText());
}

CLI::Option& addSlots(CLI::App& app, const char* help, Options& options)
{
    return *app.add_option("--slots", options._slots, help)->type_name("PATTERN")->check(labelPattern());
}

// Options that say nothing without the file.
void addRecorder(CLI::App& app, CLI::Option& file, Options& options)
{
    addSlots(app, "record only out-slots whose label fits; '*' stands for any text", options).needs(&file);
    app.add_option("--memory", options._memory, "MB of records that may wait to be written; 256 if not given")
        ->type_name("MB")
        ->check(between(0, 65'536, "a number of MB above 0 and up to 65536"))
        ->needs(&file);
}

void addHost(CLI::App& app, Options& options, const char* names = "--host")
{
    app.add_option(names, options._host, "the host to ask, by its process ID or its socket, where several run")
        ->type_name("PID|PATH");
}

void addLabel(CLI::App& app, const char* name, const char* help, std::string& label)
{
    app.add_option(name, label, help)->required();
}

void addCount(CLI::App& app, const char* help, Options& options)
{
    app.add_option("-n", options._count, help)->type_name("N")->check(between(0, 1e15, "a number above 0"));
}

void addDistance(CLI::App& app, const char* option, const char* help, double& distance)
{
    app.add_option(option, distance, help)->type_name("D")->check(between(0, 1e9, "a distance above 0"));
}

// How a run, or a replay, is shown, and to whom.
void addShowing(CLI::App& app, Options& options)
{
    addFormat(app, "--format", "how values are shown: table, lines or json", options._format,
              {{"table", Format::Table}, {"lines", Format::Lines}, {"json", Format::Json}});
    addFilter(app, options);
    // A flag, for else a bare one would take the scene behind it for its value.
    app.add_flag("--monitor{localhost}", options._listen,
                 "answer on TCP, too, for reading: --monitor=ADDRESS:PORT; loopback and 8765 if not given")
        ->check(listenAddress());
    app.add_flag("--monitor-write", options._monitorMayWrite,
                 "let who has the token of the printed address change things on TCP");
    app.add_flag("--quiet", options._quiet, "show no values, only messages");
    app.add_flag("--verbose", options._verbose, "show the library's informational lines");
}

void addSpeed(CLI::App& app, Options& options)
{
    const auto read = [&options](const std::string& text) {
        double speed = std::numeric_limits<double>::infinity();
        const bool isNumber = text != "max" && CLI::detail::lexical_cast(text, speed);
        if (text != "max" && !(isNumber && speed >= 0.001 && speed <= 1000))
            throw CLI::ValidationError("--speed", inQuotes(text) + " is neither a number from 0.001 to 1000 nor max");
        options._speed = speed;
    };
    app.add_option_function<std::string>("--speed", read,
                                         "so many times as fast as recorded, or max: as fast as possible")
        ->type_name("X|max");
}

void addPosition(CLI::App& app, const char* option, const char* help, double& seconds)
{
    const auto isPosition = [](std::string& text) -> std::string {
        double number = 0;
        if (CLI::detail::lexical_cast(text, number) && number >= 0 && number <= 1e9)
            return {};
        return inQuotes(text) + " is not a number of seconds from 0 on";
    };
    app.add_option(option, seconds, help)->type_name("S")->check(CLI::Validator(isPosition, std::string()));
}

void addScenes(CLI::App& app, Options& options)
{
    app.add_option("SCENE", options._names, "scene files, one context each")->required();
}

// A part of the verb that has parts.
CLI::App& addAction(CLI::App& app, const char* name, const char* help, Options::Action action, Options& options)
{
    CLI::App& part = *app.add_subcommand(name, help);
    const auto setFile = [action, &options](const std::string& file) {
        options._action = action;
        options._names = {file};
    };
    part.add_option_function<std::string>("FILE", setFile, "a recording")->required();
    return part;
}

void checkExport(const Options& options)
{
    if (options._format == Format::Mcap && options._output.empty())
        throw CLI::ValidationError("--format", "mcap needs --output FILE");
    if (options._format != Format::Mcap && options._zstd)
        throw CLI::ValidationError("--zstd", "only --format mcap is compressed");
}
} // namespace

namespace Arguments {

void nothing(CLI::App&, Options&) {}

void names(CLI::App& app, Options& options)
{
    app.add_option("NAME", options._names, "only these");
}

void namesAndFormat(CLI::App& app, Options& options)
{
    names(app, options);
    addFormat(app, "--format", "text or json, one object per line", options._format,
              {{"text", Format::Text}, {"json", Format::Json}});
}

void scenesAndRunOptions(CLI::App& app, Options& options)
{
    addSeconds(app, "--seconds", "stop after this many seconds", options._seconds);
    app.add_option("--frames", options._frames, "stop after this many frames")
        ->type_name("N")
        ->check(between(0, 1e15, "a number of frames above 0"));
    app.add_option("--rate", options._rate, "frames per second, instead of the scene's")
        ->type_name("HZ")
        ->check(between(0, maxRate, "a rate above 0 and up to 10000 frames per second"));
    addShowing(app, options);
    CLI::Option& file =
        *app.add_option("--record", options._record, "record what slots push into this file, which must not exist yet");
    file.type_name("FILE");
    addRecorder(app, file, options);
    app.add_flag("--strict", options._strict, "refuse scenes of which a handler or a node cannot be made");
    app.add_flag("--watch", options._followsFiles, "read a scene anew when it is saved, and do what differs");
    addScenes(app, options);
}

void recordingAndReplay(CLI::App& app, Options& options)
{
    app.add_option("FILE", options._file, "recording")->required();
    app.add_option("SCENE", options._names, "scene files; those in the recording if not given");
    addSpeed(app, options);
    addPosition(app, "--from", "begin so many seconds behind the recording's start", options._fromPosition);
    addPosition(app, "--to", "end so many seconds behind it", options._toPosition);
    app.add_flag("--loop", options._loops, "begin again at the end");
    app.add_flag("--paused", options._startsPaused, "wait for a key at the start");
    app.add_flag("--step", options._stepsFrames, "wait for a key behind each frame");
    app.add_flag("--send", options._send, "make the nodes that only send, too: what they drive will move");
    app.add_flag("--as-test", options._asTest, "print the fields' changes, which are the same each time");
    app.add_option("--golden", options._golden, "compare them with those in a file")->type_name("FILE");
    app.add_option("--write-golden", options._goldenToWrite, "write them to a file")->type_name("FILE");
    addShowing(app, options);
}

void scenesAndGraph(CLI::App& app, Options& options)
{
    app.add_flag("--strict", options._strict, "refuse scenes with notes, too");
    addFormat(app, "--graph", "print the graph of what runs: text, json or dot", options._graph,
              {{"text", Format::Text}, {"json", Format::Json}, {"dot", Format::Dot}});
    addScenes(app, options);
}

void whyAndWhere(CLI::App& app, Options& options)
{
    app.add_option(
           "LABELS", options._names,
           "SCENE FROM TO: runs the scene, unless a host does; FROM TO: asks a running host; nothing: asks it for "
           "all that does not flow. FROM is the label that records come from, where '*' stands for any text, TO "
           "the one that they shall get to")
        ->expected(0, 3);
    addHost(app, options);
    addSeconds(app, "--seconds", "for a scene that is run: give up after this many seconds", options._seconds);
    addSeconds(app, "--stale", "for such a scene: age from which a record is stale; 1 if not given",
               options._staleAfter);
    addSeconds(
        app, "--patience",
        "for such a scene: how long a cause must last that may pass; 1 if not given, never above half of --seconds",
        options._patience);
    addFormat(app, "--format", "text or json", options._format, {{"text", Format::Text}, {"json", Format::Json}});
}

void sceneLabelAndPoints(CLI::App& app, Options& options)
{
    const auto addScene = [&options](const std::string& scene) { options._names.push_back(scene); };
    app.add_option_function<std::string>("SCENE", addScene, "scene file")->required();
    addLabel(app, "LABEL", "of the sensor that gets the device's position", options._label);
    addLabel(app, "POINTS", "file of points, a line each: x, y, z or name, x, y, z", options._points);
    addDistance(app, "--limit", "how far from its place a point may be, in the scene's unit; 0.05 if not given",
                options._limit);
    addDistance(app, "--still", "how far values may stray while the device is held still; 0.01 if not given",
                options._still);
    app.add_flag("--keep-scale", options._keepScale, "the device's lengths are right as they are");
}

void placeAndSeconds(CLI::App& app, Options& options)
{
    app.add_option("PLACE", options._listen,
                   "[ADDRESS:]PORT to listen on; a port alone means this machine only, 0.0.0.0:PORT any")
        ->required();
    addSeconds(app, "--seconds", "end after this many seconds", options._seconds);
}

void recording(CLI::App& app, Options& options)
{
    using Action = Options::Action;
    app.require_subcommand(1);
    CLI::App& info = addAction(app, "info", "say what is in it", Action::Info, options);
    addFormat(info, "--format", "text or json", options._format, {{"text", Format::Text}, {"json", Format::Json}});
    addAction(app, "check", "say whether it is whole, was cut off or is damaged", Action::Check, options);
    addAction(app, "finish", "give one that was cut off its end", Action::Finish, options);
    CLI::App& out = addAction(app, "export", "write what is in it in another form", Action::Export, options);
    addFormat(out, "--format", "jsonl, csv or mcap; jsonl if not given", options._format,
              {{"jsonl", Format::JsonLines}, {"csv", Format::Csv}, {"mcap", Format::Mcap}});
    out.add_option("--output", options._output, "file that is made; standard output if not given")->type_name("FILE");
    out.add_flag("--zstd", options._zstd, "compress the chunks of mcap");
    addSlots(out, "only slots whose label fits; '*' stands for any text", options);
    out.final_callback([&options] { checkExport(options); });
}

void listing(CLI::App& app, Options& options)
{
    addHost(app, options);
    app.add_flag("--names", options._onlyNames, "only labels of slots and names of sensors, one on a line, at once");
    app.add_flag("--nodes", options._onlyNodes, "the same for labels of nodes");
    addFormat(app, "--format", "text or json", options._format, {{"text", Format::Text}, {"json", Format::Json}});
}

void labelAndFormat(CLI::App& app, Options& options)
{
    addLabel(app, "LABEL", "of a slot, or the name of a sensor", options._label);
    addHost(app, options);
    app.add_flag_callback(
        "--once", [&options] { options._count = 1; }, "only one record");
    addCount(app, "end after so many records", options);
    addSeconds(app, "--seconds", "end after this many seconds", options._seconds);
    addFormat(app, "--format", "text, json or csv", options._format,
              {{"text", Format::Text}, {"json", Format::Json}, {"csv", Format::Csv}});
}

void label(CLI::App& app, Options& options)
{
    addLabel(app, "LABEL", "of a slot", options._label);
    addHost(app, options);
    addCount(app, "end after so many lines, one a second", options);
}

void twoLabels(CLI::App& app, Options& options)
{
    addLabel(app, "FROM", "label that records come from", options._from);
    addLabel(app, "TO", "label that they get to", options._to);
    addHost(app, options);
    app.add_option("--seconds", options._seconds, "measure for so long; 2 if not given")
        ->type_name("S")
        ->check(between(0, 60, "a number of seconds above 0 and up to 60"));
    addFormat(app, "--format", "text or json", options._format, {{"text", Format::Text}, {"json", Format::Json}});
}

void labelAndValue(CLI::App& app, Options& options)
{
    addLabel(app, "LABEL", "of a slot that takes values", options._label);
    addLabel(app, "VALUE",
             "as JSON, where a text needs no quotes; - for what 'echo --format json' writes, from standard input",
             options._value);
    addHost(app, options);
    app.add_option("-r", options._repeat, "so many records a second, again and again")
        ->type_name("HZ")
        ->check(between(0, 1e5, "a rate above 0 and up to 100000 records per second"));
    addCount(app, "end after so many records", options);
    app.add_flag("--now", options._stampNow, "stamp what standard input has with the time at which it is published");
}

void recordFile(CLI::App& app, Options& options)
{
    CLI::Option& file = *app.add_option("FILE", options._record,
                                        "a name that ends in .mcap and that no file has yet; without it the verb says "
                                        "how a recording goes");
    addHost(app, options);
    addRecorder(app, file, options);
    addSeconds(app, "--seconds", "end after this many seconds", options._seconds);
    app.add_flag("--stop", options._stops, "end what is being recorded")->excludes(&file);
}

void labelAndSettings(CLI::App& app, Options& options)
{
    addLabel(app, "LABEL", "of a node", options._label);
    app.add_option("SETTING", options._settings,
                   "name=value; what stands behind '=' is the value, with its blanks, unless it begins with a quote as "
                   "in a scene file")
        ->required();
    addHost(app, options);
}

void routeEnds(CLI::App& app, Options& options)
{
    app.require_subcommand(1);
    CLI::App& add = *app.add_subcommand("add", "join two slots, or those that two patterns stand for");
    CLI::App& remove = *app.add_subcommand("remove", "take a route away");
    for (CLI::App* const part : {&add, &remove}) {
        addLabel(*part, "FROM", "label of an out-slot", options._from);
        addLabel(*part, "TO", "label of an in-slot or a sensor", options._to);
        addHost(*part, options);
    }
    add.add_option("CONVERSION", options._conversion, "filters on the way, such as 'Axes unit=cm | OneEuro'");
    remove.callback([&options] { options._removes = true; });
}

void hostAlone(CLI::App& app, Options& options)
{
    addHost(app, options);
}

void graphForm(CLI::App& app, Options& options)
{
    addHost(app, options);
    addFormat(app, "--format", "text, json or dot", options._graph,
              {{"text", Format::Text}, {"json", Format::Json}, {"dot", Format::Dot}});
}

void tableOptions(CLI::App& app, Options& options)
{
    addHost(app, options);
    addFilter(app, options);
}

void pageHost(CLI::App& app, Options& options)
{
    addHost(app, options, "--host,HOST");
}
} // namespace Arguments
} // namespace Host
