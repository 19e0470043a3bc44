#pragma once

#include <string>

namespace Trovio {

/// Why a file is no whole shared library of this machine: what was found, and what is expected. Empty where it looks
/// like one. The loader maps whatever it is given, so a file that was cut ends the process at its missing pages; and
/// it would wait for ever for the other end of a pipe.
/// Reads the headers only: what a whole library holds wrongly in its insides stays unseen. Never waits.
std::string faultOfLibrary(const std::string& path);

} // namespace Trovio
