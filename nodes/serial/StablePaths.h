#pragma once

#include <string>

namespace Trovio::Nodes {

/// Names of serial devices that stay theirs, whatever else is plugged in and in which order: links that the system
/// makes from maker, model and serial number.
/// Threads: any; reads a folder, so not one that must not wait.
class StablePaths {
public:
    explicit StablePaths(std::string folder = "/dev/serial/by-id") : _folder(std::move(folder)) {}

    /// The link that leads to the same device as path; empty if there is none, or if path is that link.
    std::string find(const std::string& path) const;

    /// "plugged in: …, …": what may be meant instead of a path that is not there.
    std::string describeAll() const;

private:
    const std::string _folder;
};

} // namespace Trovio::Nodes
