#pragma once

namespace Host {

/// What a verb returns to whoever called the program.
enum ExitCode : int {
    Done = 0,
    Failed = 1,
    BadUsage = 2, // of the command line, or a bad scene
    NothingFound = 3,
    TypeMismatch = 4,
    NoAnswer = 124
};
} // namespace Host
