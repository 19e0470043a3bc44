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

namespace Host {

using namespace Explain;

namespace {

// CLI11 would only say that a verb is missing.
bool knownVerb(const char* argument, const std::vector<Verb>& verbs)
{
    std::vector<std::string_view> names;
    names.reserve(verbs.size());
    for (const Verb& verb : verbs)
        names.push_back(verb._name);
    if (argument[0] == '-' || std::ranges::find(names, argument) != names.end())
        return true;
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
    if (argc > 1 && !knownVerb(argv[1], verbs))
        return BadUsage;
    Options options;
    CLI::App app("Runs scenes whose sensors are fed by devices, networks and other processes.", "ostrel-host");
    app.require_subcommand(1);
    app.set_version_flag("--version", "ostrel-host " HOST_VERSION, "print the version");
    for (const Verb& verb : verbs)
        verb._takes(*app.add_subcommand(verb._name, verb._help), options);
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
