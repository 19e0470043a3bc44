#pragma once

#include "monitor/replay/RecordedFile.h"

#include <string>

namespace Host {

/// What a recording holds, found by walking through all of it, whole or not, and told.
class Contents {
public:
    /// Reads all. Throws std::runtime_error where the file cannot be opened.
    explicit Contents(const std::string& path);

    const Monitor::Mcap::FileState& state() const { return _found._state; }
    std::uint64_t messages() const { return _found._messages + _found._outside; }
    /// "whole", or what is wrong with it and what helps.
    std::string verdict() const;

    /// For people: state, time, slots, what was not kept, what is attached.
    std::string text() const;
    /// One object on a line.
    std::string json() const;

private:
    std::string factLines() const;

    const std::string _path;
    const Monitor::RecordedFile _found;
    const Monitor::Mcap::TimeSpan _times; // of all messages
};
} // namespace Host
