#pragma once

#include <string>
#include <vector>

namespace Host {

/// A host that runs, by the socket that it listens at.
struct RunningHost {
    std::string _pid; // as the socket's file is called; empty for one that was named by its path
    std::string _socket;

    /// What messages call it.
    std::string name() const;
};

/// The hosts of this user that answer, by process ID. A socket that a killed host has left behind is none.
std::vector<RunningHost> runningHosts();

/// The host that `wish` names by its process ID or by the path of its socket; where it is empty, the only one that
/// runs. Throws AskError: NothingFound where there is none, BadUsage where there are several.
RunningHost chosenHost(const std::string& wish);
} // namespace Host
