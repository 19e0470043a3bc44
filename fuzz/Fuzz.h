#pragma once

#include <string>
#include <string_view>

namespace Fuzz {

/// One run of a target with an input from outside. Returns for every input; what must never happen ends the program,
/// through require(), a sanitizer, or an exception that nobody catches. Each target defines it.
void runOnce(std::string_view input);

/// Ends the program with the promise that was broken. For conditions that no input may break.
void require(bool holds, const char* promise);

/// Takes the first line off the input, without its end. For targets that take several texts at once.
std::string_view takeLine(std::string_view& input);

/// Whether a message from a refusal can be shown as it is: it says something, and has no control character but the
/// ends of its lines.
bool isPrintable(std::string_view message);

} // namespace Fuzz
