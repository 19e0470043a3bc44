#include "host/cli/Arguments.h"

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "host/cli/CommandLine.h"
#include "host/show/SensorFilter.h"
#include "scene/file/SceneFile.h"

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

void addScenes(CLI::App& app, Options& options)
{
    app.add_option("SCENE", options._names, "scene files, one context each")->required();
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
    addFormat(app, "--format", "how values are shown: table, lines or json", options._format,
              {{"table", Format::Table}, {"lines", Format::Lines}, {"json", Format::Json}});
    app.add_option("--filter", options._filter,
                   "show only sensors with this text in their name or label; '*' stands for any text")
        ->type_name("PATTERN")
        ->check(filterText());
    app.add_flag("--strict", options._strict, "refuse scenes of which a handler or a node cannot be made");
    app.add_flag("--quiet", options._quiet, "show no values, only messages");
    app.add_flag("--verbose", options._verbose, "show the library's informational lines");
    addScenes(app, options);
}

void scenesAndGraph(CLI::App& app, Options& options)
{
    app.add_flag("--strict", options._strict, "refuse scenes with notes, too");
    addFormat(app, "--graph", "print the graph of what runs: text, json or dot", options._graph,
              {{"text", Format::Text}, {"json", Format::Json}, {"dot", Format::Dot}});
    addScenes(app, options);
}

void sceneAndLabels(CLI::App& app, Options& options)
{
    const auto addScene = [&options](const std::string& scene) { options._names.push_back(scene); };
    app.add_option_function<std::string>("SCENE", addScene, "scene file")->required();
    app.add_option("FROM", options._from, "label that records come from; '*' stands for any text")->required();
    app.add_option("TO", options._to, "label that they shall get to")->required();
    addSeconds(app, "--seconds", "give up after this many seconds", options._seconds);
    addSeconds(app, "--stale", "age from which a record is stale; 1 if not given", options._staleAfter);
    addSeconds(app, "--patience",
               "how long a cause must last that may pass; 1 if not given, never above half of --seconds",
               options._patience);
    addFormat(app, "--format", "text or json", options._format, {{"text", Format::Text}, {"json", Format::Json}});
}
} // namespace Arguments
} // namespace Host
