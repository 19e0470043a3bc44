#pragma once

#include <string>

namespace Trovio::Nodes {

/// What a password file holds, or why it cannot be used.
struct PasswordText {
    std::string _password;
    std::string _problem; // empty if there is none
};

/// The first line of a file that only its owner and group may read. Reads the disk, so not on a thread that must not
/// wait.
PasswordText readPasswordFile(const std::string& path);

} // namespace Trovio::Nodes
