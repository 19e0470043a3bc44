#include "host/CommandLine.h"

#include "host/Escape.h"
#include "host/ExitCode.h"
#include "host/NearestName.h"
#include "host/SceneFile.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdio>

namespace Host {
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

Format formatOf(const std::string& name)
{
    constexpr std::string_view names[] = {"table", "lines", "json"};
    constexpr Format formats[] = {Format::Table, Format::Lines, Format::Json};
    for (std::size_t i = 0; i < std::size(names); ++i)
        if (name == names[i])
            return formats[i];
    throw CLI::ValidationError("--format",
                               inQuotes(name) + " is no format; allowed: " + listed(names) + nearestHint(name, names));
}

void addRunOptions(CLI::App& app, Options& options)
{
    app.add_option("--seconds", options._seconds, "stop after this many seconds")
        ->type_name("S")
        ->check(between(0, 1e9, "a number of seconds above 0"));
    app.add_option("--frames", options._frames, "stop after this many frames")
        ->type_name("N")
        ->check(between(0, 1e15, "a number of frames above 0"));
    app.add_option("--rate", options._rate, "frames per second, instead of the scene's")
        ->type_name("HZ")
        ->check(between(0, highestRate, "a rate above 0 and up to 10000 frames per second"));
    app.add_option_function<std::string>(
           "--format", [&options](const std::string& name) { options._format = formatOf(name); },
           "how values are shown: table, lines or json")
        ->type_name("FORMAT");
    app.add_flag("--quiet", options._quiet, "show no values, only messages");
    app.add_flag("--verbose", options._verbose, "show the library's informational lines");
}

void addVerb(CLI::App& app, const Verb& verb, Options& options)
{
    CLI::App& sub = *app.add_subcommand(verb._name, verb._help);
    switch (verb._takes) {
    case Verb::Takes::Nothing:
        break;
    case Verb::Takes::Names:
        sub.add_option("NAME", options._names, "only these");
        break;
    case Verb::Takes::ScenesAndRunOptions:
        addRunOptions(sub, options);
        [[fallthrough]];
    case Verb::Takes::Scenes:
        sub.add_option("SCENE", options._names, "scene files, one context each")->required();
        break;
    }
}
// CLI11 would only say that a verb is missing.
bool knownVerb(const char* argument, const std::vector<Verb>& verbs)
{
    std::vector<std::string_view> names;
    for (const Verb& verb : verbs)
        names.push_back(verb._name);
    if (argument[0] == '-' || std::ranges::find(names, argument) != names.end())
        return true;
    std::fprintf(stderr, "unknown verb %s; allowed: %s%s\n", inQuotes(argument).c_str(), listed(names).c_str(),
                 nearestHint(argument, names).c_str());
    return false;
}
} // namespace

int runCommandLine(int argc, char** argv, const std::vector<Verb>& verbs)
{
    if (argc > 1 && !knownVerb(argv[1], verbs))
        return BadUsage;
    Options options;
    CLI::App app("Runs scenes whose sensors are fed by devices, networks and other processes.", "ostrel-host");
    app.require_subcommand(1);
    for (const Verb& verb : verbs)
        addVerb(app, verb, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? Done : BadUsage;
    }
    for (const Verb& verb : verbs)
        if (app.got_subcommand(verb._name))
            return verb._run(options);
    return BadUsage; // not reached: a verb is required
}
} // namespace Host
