#pragma once

#include "host/Options.h"

#include <vector>

namespace CLI {
class App;
}

namespace Host {

/// One thing that the program can do; run returns the exit code.
struct Verb {
    const char* _name;
    const char* _help;
    void (*_takes)(CLI::App& app, Options& options); // host/cli/Arguments.h
    int (*_run)(const Options& options);
};

/// Parses the arguments, runs the verb and returns its exit code. Help that was asked for goes to standard output;
/// wrong usage is said on standard error and returns BadUsage, and so is the help where nothing was asked for; so is
/// output that did not arrive, which returns Failed.
int runCommandLine(int argc, char** argv, const std::vector<Verb>& verbs);
} // namespace Host
