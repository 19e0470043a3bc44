#include "host/cli/CommandLine.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "explain/text/NameHint.h"
#include "host/ExitCode.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <span>

namespace Host {

using namespace Explain;

namespace {

// CLI11 would only say that a verb is missing. Also the verb behind 'recording', which has verbs of its own.
bool knowsVerbs(const CLI::App& app, std::span<char* const> arguments)
{
    std::vector<std::string_view> names;
    for (const CLI::App* const verb : app.get_subcommands({}))
        names.push_back(verb->get_name());
    if (names.empty() || arguments.empty() || arguments[0][0] == '-')
        return true;
    const std::string_view argument = arguments[0];
    if (std::ranges::find(names, argument) != names.end())
        return knowsVerbs(*app.get_subcommand(std::string(argument)), arguments.subspan(1));
    std::fprintf(stderr, "unknown verb %s; allowed: %s%s\n", inQuotes(argument).c_str(), listed(names).c_str(),
                 nearestHint(argument, names).c_str());
    return false;
}

int runVerb(const Verb& verb, const Options& options)
{
    try {
        return verb._run(options);
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "memory ran out\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", textOf(error).c_str());
    }
    return Failed;
}

// What was printed and still waits in a buffer fails only here.
int codeWithOutput(int code)
{
    if (std::cout.good() && !std::ferror(stdout) && std::fflush(stdout) == 0)
        return code;
    std::fprintf(stderr, "standard output cannot be written to\n");
    return Failed;
}
} // namespace

int runCommandLine(int argc, char** argv, const std::vector<Verb>& verbs)
{
    Options options;
    CLI::App app("Runs scenes whose sensors are fed by devices, networks and other processes.", "ostrel-host");
    app.require_subcommand(1);
    app.set_version_flag("--version", "ostrel-host " HOST_VERSION, "print the version");
    for (const Verb& verb : verbs)
        verb._takes(*app.add_subcommand(verb._name, verb._help), options);
    if (argc > 1 && !knowsVerbs(app, {argv + 1, argv + argc}))
        return BadUsage;
    if (argc < 2) {
        std::fputs(app.help().c_str(), stderr);
        return BadUsage;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return codeWithOutput(app.exit(error) == 0 ? Done : BadUsage);
    }
    for (const Verb& verb : verbs)
        if (app.got_subcommand(verb._name))
            return codeWithOutput(runVerb(verb, options));
    return BadUsage; // not reached: a verb is required
}
} // namespace Host
