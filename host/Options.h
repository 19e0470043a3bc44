#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace Host {

enum class Format { Automatic, Table, Lines, Json, Text, Csv, Dot, JsonLines, Mcap };

/// What the caller asked for; each verb reads what concerns it.
struct Options {
    static constexpr std::uint64_t Endless = std::numeric_limits<std::uint64_t>::max();

    std::vector<std::string> _names; // scenes of run and check, names for nodes and types, what why is asked
    double _seconds = std::numeric_limits<double>::infinity();
    std::uint64_t _frames = Endless;
    std::optional<double> _rate; // frames per second, instead of the scene's
    Format _format = Format::Automatic;
    Format _graph = Format::Automatic;  // of check, where Automatic is none, and of graph
    std::string _from, _to;             // labels of why, delay and route
    std::string _conversion;            // of route: what is done with the values on it
    bool _removes = false;              // of route: the route goes
    std::vector<std::string> _settings; // of set: name=value
    std::string _filter;                // of run and watch
    double _staleAfter = 1;             // seconds
    double _patience = 1;               // seconds
    std::string _host;                  // process ID or socket of a host that runs; empty for the only one
    std::string _label, _value;         // of pub, which may be "-"; the label of echo, hz, bw, set and calibrate, too
    std::uint64_t _count = Endless;     // records or lines
    std::optional<double> _repeat;      // records per second of pub
    bool _stampNow = false;             // not as they were stamped before
    bool _onlyNames = false;            // of list
    bool _onlyNodes = false;            // of list: the labels of nodes
    std::string _listen;                // where run answers on TCP, empty for what its scenes say; place of osc-listen
    bool _monitorMayWrite = false;      // there, with a token
    std::string _points;                // of calibrate: the file; its sensor's label is _label
    double _limit = 0.05;               // of calibrate: how far off a point may be, in the scene's unit
    double _still = 0.01;               // of calibrate: how far values may stray within a second, in theirs
    bool _keepScale = false;            // of calibrate
    std::string _record;                // file that is recorded to; empty for none
    bool _stops = false;                // what is being recorded
    std::string _slots = "*";           // labels that are recorded or exported
    double _memory = 256;               // MB of records that may wait to be written
    enum class Action { Info, Check, Finish, Export } _action = Action::Info; // of recording
    std::string _output;          // file of an export; empty for standard output
    bool _zstd = false;           // the chunks of one are compressed
    std::string _file;            // recording of replay
    std::optional<double> _speed; // of it; infinite is as fast as possible
    double _fromPosition = 0;     // seconds from its start, as the next
    double _toPosition = std::numeric_limits<double>::infinity();
    bool _loops = false, _startsPaused = false, _stepsFrames = false;
    bool _send = false;   // nodes that only send are made
    bool _asTest = false; // then the next may name a file
    std::string _golden, _goldenToWrite;
    bool _followsFiles = false; // of run: scenes are read anew when they are saved
    bool _strict = false;
    bool _quiet = false;
    bool _verbose = false;
};
} // namespace Host
