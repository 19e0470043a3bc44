#pragma once

#include <string>

namespace Monitor {

/// Where the sockets of the running programs of this user stand, each as "PID.sock": $XDG_RUNTIME_DIR/ostrel, or
/// where there is no such folder ostrel-UID in the system's folder for temporary files. It may not be there.
std::string socketFolder();

/// Makes that folder, or another one, where it is missing, for its owner only. Returns what is wrong with it: empty
/// where all is well.
std::string makeSocketFolder(const std::string& folder);
} // namespace Monitor
