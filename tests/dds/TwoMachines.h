#pragma once

#include "tests/dds/Line.h"
#include "tests/host/HostProcess.h"
#include <optional>

namespace Trovio::Nodes {

/// This process and a network namespace beside it, as two machines with a cable between them: interface cable0 in both,
/// addresses 10.77.0.1 here and 10.77.0.2 there. Nothing of it is left when the process is gone.
/// Make it before the process has a second thread: the process moves into a network namespace of its own.
class TwoMachines {
public:
    TwoMachines();

    /// Why this machine cannot do it; empty if it could.
    const std::string& getHindrance() const { return _hindrance; }

    Line& line() { return *_line; }

    /// What starts a program on the other machine, to be put before its name.
    std::vector<std::string> there() const { return {"--target", _pid, "--net"}; }

    /// In the shell, on this machine. Throws std::runtime_error where it fails.
    void run(const std::string& command);
    /// One program on the other machine, with its arguments.
    void runThere(const std::string& command) { run("nsenter --target " + _pid + " --net " + command); }

private:
    void setUp();

    std::string _hindrance;
    std::optional<HostProcess> _there; // sleeps, and keeps the other namespace
    std::string _pid;
    std::optional<Line> _line;
};

} // namespace Trovio::Nodes
