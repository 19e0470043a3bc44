#include "nodes/dds/net/DdsLog.h"

#include "base/Mutex.h"
#include "nodes/shared/RateLimiter.h"
#include "nodes/shared/Report.h"
#include <csignal>
#include <dds/dds.h>
#include <dds/ddsrt/log.h>
#include <mutex>
#include <sys/uio.h>
#include <unistd.h>

namespace Trovio::Nodes {

namespace {

thread_local DdsLog::Listening* listening = nullptr;

struct Reports {
    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    RateLimiter _limiter OSTREL_GUARDED_BY(_lock){Clock::system()}; // for peers can cause messages at will

    static std::optional<std::string> admit()
    {
        static Reports& reports = *new Reports; // for the library's threads outlive static objects
        const Ostrel::LockGuard guard(reports._lock);
        return reports._limiter.admit();
    }
};

std::string textOf(const dds_log_data_t& data)
{
    std::string text(data.message, data.size);
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    return text;
}

struct Known {
    std::string_view _part; // of the library's words
    const char* _ours;
};
constexpr Known known[] = {
    {"deserialization", "a received sample cannot be deserialised as its type and is discarded"},
    {"malformed packet", "a received packet is malformed and is discarded"},
    {"invalid parameter list", "discovery data of another program is malformed and is discarded"},
    {"invalid qos", "discovery data of another program is malformed and is discarded"},
    {"conn_write", "a packet cannot be sent: its interface may be down, or a firewall forbids it"},
    {"dropping oversize", "a sample is larger than 'largest' allows and is discarded"},
    {"could not deliver data", "a reader in this program does not keep up"},
    {"free participant index", "no participant index is free"},
    {"match an available interface", "there is no such network interface"},
    {"match a local interface", "there is no such network interface"},
    {"failed to create socket", "no socket can be opened"},
    {"failed to bind", "its ports are taken, or forbidden"},
    {"multicast join failed", "multicast does not work on some of its interfaces"},
    {"failed to increase socket", "the system grants less receive buffer than is needed (sysctl net.core.rmem_max)"},
};

/// Empty where there are none.
std::string ourWordsFor(const std::string& text)
{
    for (const auto& [part, ours] : known)
        if (text.find(part) != std::string::npos)
            return ours;
    return {};
}

void reportProblem(const std::string& text)
{
    const std::string ours = ourWordsFor(text);
    if (const auto more = Reports::admit())
        report(osg::LogWarning,
               "DDS: " +
                   (ours.empty() ? "the DDS library reports a problem; its own message is in the log at level 'info'"
                                 : ours) +
                   *more);
    report(osg::LogInfo, "DDS: the library says: " + text);
}

/// The program is about to end: no log may hold this back, and memory may be what is missing.
void writeLastWords(std::string_view before, std::string_view text)
{
    const auto part = [](std::string_view words) { return iovec{const_cast<char*>(words.data()), words.size()}; };
    const iovec parts[] = {part(before), part(text), part(text.ends_with('\n') ? "" : "\n")};
    [[maybe_unused]] const auto written = ::writev(STDERR_FILENO, parts, std::size(parts));
}

struct sigaction beforeAbort;

// Runs whoever aborts; only the library does so without a message. The action that was set before follows.
void onAbort(int number)
{
    writeLastWords("",
                   "ERROR Trovio: DDS: this program aborts; unless a line above says why, the DDS library ran out of "
                   "memory (ulimit -v)");
    ::sigaction(number, &beforeAbort, nullptr);
    ::raise(number);
}

void write(void*, const dds_log_data_t* data)
try {
    if ((data->priority & DDS_LC_FATAL) != 0)
        return writeLastWords("ERROR Trovio: DDS: the library ends this program: ", {data->message, data->size});
    if (!listening && (data->priority & (DDS_LC_ERROR | DDS_LC_WARNING)) == 0)
        return report(osg::LogInfo, "DDS: the library says: " + textOf(*data));
    if (!listening)
        return reportProblem(textOf(*data));
    const std::string ours = ourWordsFor(textOf(*data));
    listening->add(ours.empty() ? "the library says: " + textOf(*data) : ours);
} catch (const std::bad_alloc&) {
    // The caller is C: no exception may leave. The line is lost.
}

} // namespace

void DdsLog::takeOver()
{
    dds_set_log_sink(write, nullptr);
    // Where memory runs out, the library aborts without a message.
    // Once: a handler that was set after ours may call ours as the one before it.
    static std::once_flag installed;
    std::call_once(installed, [] {
        struct sigaction action {};
        action.sa_handler = onAbort;
        ::sigaction(SIGABRT, &action, &beforeAbort);
    });
}

DdsLog::Listening::Listening() : _outer(listening)
{
    listening = this;
}

DdsLog::Listening::~Listening()
{
    listening = _outer;
}

} // namespace Trovio::Nodes
