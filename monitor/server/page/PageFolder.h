#pragma once

#include <string>
#include <vector>

namespace Monitor {

/// Where the files of the page may stand, the best place first: where this library was installed, wherever that has
/// been moved to, and in its build tree. Any thread.
std::vector<std::string> pageFolders();
} // namespace Monitor
