#include "host/show/Terminal.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Host {
namespace {

std::size_t sizeFrom(unsigned short said, const char* variable, std::size_t otherwise)
{
    if (said != 0)
        return said;
    const char* const value = std::getenv(variable);
    const std::string_view text = value == nullptr ? "" : value;
    std::uint16_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number == 0 ? otherwise : number;
}
} // namespace

std::optional<TerminalSize> terminalSize(int descriptor)
{
    if (!isatty(descriptor))
        return std::nullopt;
    winsize size = {};
    ioctl(descriptor, TIOCGWINSZ, &size);
    return TerminalSize{sizeFrom(size.ws_col, "COLUMNS", 80), sizeFrom(size.ws_row, "LINES", 24)};
}

bool hasCursor(int descriptor)
{
    const char* const type = std::getenv("TERM");
    return isatty(descriptor) && (type == nullptr || std::strcmp(type, "dumb") != 0);
}

bool isInFront(int descriptor)
{
    const pid_t front = tcgetpgrp(descriptor);
    return front == -1 || front == getpgrp(); // -1 where no shell controls jobs by this terminal
}
} // namespace Host
