#pragma once

#include <string>

namespace Trovio {

/// The text of the exception that is being handled, of whatever kind. Only in a catch block.
std::string describeCurrentException();

} // namespace Trovio
