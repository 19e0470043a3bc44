#include "host/ask/LineOutput.h"

#include "host/ExitCode.h"
#include "host/ask/HostClient.h"
#include "host/ask/Steady.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace Host {

LineOutput::LineOutput()
{
    std::signal(SIGPIPE, SIG_IGN);
}

bool LineOutput::write(std::string_view text)
{
    for (std::string_view left = text; !left.empty();) {
        const ssize_t written = ::write(STDOUT_FILENO, left.data(), left.size());
        if (written < 0 && (errno == EPIPE || errno == EIO))
            return false;
        if (written < 0 && errno != EINTR)
            throw AskError(Failed, "standard output cannot be written to");
        left.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

bool LineOutput::wait(double seconds)
{
    const double end = steadySeconds() + seconds;
    do {
        pollfd reader = {STDOUT_FILENO, 0, 0};
        if (poll(&reader, 1, millisecondsOf(std::max(end - steadySeconds(), 0.0))) > 0)
            return false;
    } while (steadySeconds() < end);
    return true;
}
} // namespace Host
