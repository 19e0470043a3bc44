#include "host/output/RunOutput.h"

#include "host/ExitCode.h"
#include "host/output/RunLog.h"
#include "osg/LogFile.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace Host {
namespace {

using namespace std::chrono_literals;

// At the end of a run. Messages are waited for last, as they report on the other outputs.
constexpr auto patienceForOthers = 900ms, patience = 1000ms;
constexpr auto minForMessages = 100ms; // on a machine so busy that all of that has passed meanwhile

bool areOne(int a, int b)
{
    struct stat first = {}, second = {};
    return fstat(a, &first) == 0 && fstat(b, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// Left open to the end of the process: a thread may be stuck in a write. -1 where none is named, or where it cannot be
// opened, which the log has reported.
int openLogFile()
{
    const char* const path = std::getenv("OSG_LOG_FILE");
    std::string ignored;
    return path == nullptr || *path == '\0' ? -1 : osg::openLogFile(path, ignored);
}

constexpr std::array crashes = {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL};
std::array<struct sigaction, crashes.size()> actionsBefore;

void restore(std::size_t i)
{
    sigaction(crashes[i], &actionsBefore[i], nullptr);
}

// The threads of the queues go on meanwhile.
void onCrash(int number)
{
    QueuedOutput::waitForAll();
    RunLog::writeHeld();
    restore(static_cast<std::size_t>(std::ranges::find(crashes, number) - crashes.begin()));
    raise(number);
}
} // namespace

std::string droppedAsText(std::uint64_t dropped, std::uint64_t inAll)
{
    const std::string cause = ", because they were not read in time\n";
    return dropped == 0 ? "dropped " + std::to_string(inAll) + " lines in all" + cause
                        : "dropped " + std::to_string(dropped) + " lines here" + cause;
}

RunOutput::RunOutput(QueuedOutput::GapLine droppedLine) : _values(STDOUT_FILENO, std::move(droppedLine))
{
    if (!areOne(STDOUT_FILENO, STDERR_FILENO))
        _messages.emplace(STDERR_FILENO, droppedAsText);
    if (const int file = openLogFile(); file >= 0)
        _logFile.emplace(file, droppedAsText);
    for (std::size_t i = 0; i < crashes.size(); ++i) {
        struct sigaction action = {};
        action.sa_handler = onCrash;
        sigaction(crashes[i], &action, &actionsBefore[i]);
    }
}

RunOutput::~RunOutput()
{
    for (std::size_t i = 0; i < crashes.size(); ++i)
        restore(i);
}

std::string RunOutput::logFileFailure()
{
    if (!_logFile || _logFile->state() == QueuedOutput::State::Open)
        return {};
    return std::string("WARNING: the log file cannot be written (") + std::strerror(_logFile->error()) +
           "); the log goes on here\n" + _logFile->takeUnwritten();
}

// Reports values that were lost on standard error, unless their reader has gone.
void RunOutput::sayOfValues(const std::string& left)
{
    if (_values.state() == QueuedOutput::State::Failed)
        return say("standard output cannot be written to");
    const auto lines = _values.dropped() + static_cast<std::uint64_t>(std::ranges::count(left, '\n'));
    if (lines > 0 && canWrite())
        say("standard output: " + std::to_string(lines) + " lines are missing, because they were not read in time");
}

int RunOutput::finish(int code)
{
    const auto now = std::chrono::steady_clock::now();
    _stream.flush();
    _values.tellTotal();
    if (_logFile) {
        _logFile->tellTotal();
        _logFile->finish(now + patienceForOthers);
        messages().putLast(logFileFailure());
    }
    const std::string left = _values.finish(now + (_messages ? patienceForOthers : patience));
    if (_messages) {
        sayOfValues(left);
        _messages->tellTotal();
        _messages->finish(std::max(now + patience, std::chrono::steady_clock::now() + minForMessages));
    }
    return _values.state() == QueuedOutput::State::Failed ? Failed : code;
}
} // namespace Host
