#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Host {

enum class Format { Automatic, Table, Lines, Json, Text, Dot };

/// What the caller asked for; each verb reads what concerns it.
struct Options {
    std::vector<std::string> _names; // scenes of run and check, names for nodes and types
    double _seconds = std::numeric_limits<double>::infinity();
    std::uint64_t _frames = std::numeric_limits<std::uint64_t>::max();
    std::optional<double> _rate; // frames per second, instead of the scene's
    Format _format = Format::Automatic;
    Format _graph = Format::Automatic; // of check; Automatic for none
    std::string _from, _to;            // labels of why
    std::string _filter;               // of run
    double _staleAfter = 1;            // seconds
    double _patience = 1;              // seconds
    bool _strict = false;
    bool _quiet = false;
    bool _verbose = false;
};

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
