#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

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
} // namespace Host
