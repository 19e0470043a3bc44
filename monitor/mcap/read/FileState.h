#pragma once

#include <cstdint>
#include <string>

namespace Monitor::Mcap {

/// What walking through a file found of its state.
struct FileState {
    enum class Verdict {
        Whole,
        Cut,     // its writer was cut off, or is still at it: what was confirmed is there, the end behind it is not
        Damaged, // something that was once confirmed cannot be read
        Foreign, // no MCAP file
        Stopped, // the visitor ended the reading
    } _verdict = Verdict::Whole;
    std::string _problem;        // the first one, with its place; empty where there is none
    std::uint64_t _size = 0;     // bytes of the file
    std::uint64_t _end = 0;      // bytes up to which it is good, without an end
    std::uint64_t _lost = 0;     // bytes that were skipped in between
    std::uint32_t _checksum = 0; // of [0, _end), where nothing was skipped
    bool _indexed = false;       // its end is whole and has a summary, so readers by index open it
    bool _sealed = false;        // its writer came to its end
};
} // namespace Monitor::Mcap
