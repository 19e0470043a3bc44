#include "nodes/dds/net/DdsResources.h"

#include "nodes/shared/FileDescriptor.h"
#include <cerrno>
#include <cstring>
#include <latch>
#include <memory>
#include <new>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <vector>

namespace Trovio::Nodes {

namespace {

// What the library takes for a domain (6 threads, 8 descriptors, 4 MB beside stacks), and some for its neighbours.
constexpr std::size_t threadsNeeded = 8;
constexpr std::size_t descriptorsNeeded = 16;
constexpr std::size_t megabytesNeeded = 16;

std::string shortOf(const std::string& what, int error, const std::string& cure)
{
    return "it takes " + what + ": " + std::strerror(error) + "; " + cure;
}

std::string findShortageOfDescriptors()
{
    std::vector<FileDescriptor> descriptors;
    while (descriptors.size() < descriptorsNeeded) {
        if (!descriptors.emplace_back(::eventfd(0, EFD_CLOEXEC)).isOpen())
            return shortOf(std::to_string(descriptorsNeeded) + " file descriptors and " +
                               std::to_string(descriptors.size() - 1) + " are left",
                           errno, "raise their limit (ulimit -n)");
    }
    return {};
}

struct Free {
    void operator()(void* memory) const { ::operator delete(memory); }
};

/// As the library takes it. What threads have reserved for themselves counts as free, as it does for them.
std::string findShortageOfMemory()
{
    std::vector<std::unique_ptr<void, Free>> megabytes;
    while (megabytes.size() < megabytesNeeded) {
        if (!megabytes.emplace_back(::operator new(1U << 20U, std::nothrow)))
            return shortOf(std::to_string(megabytesNeeded) + " MB of memory beside the stacks of its threads", ENOMEM,
                           "raise the limit on memory (ulimit -v)");
    }
    return {};
}

/// Lets threads end, before they are joined.
struct Opened {
    std::latch& _latch;
    ~Opened() { _latch.count_down(); }
};

} // namespace

std::string findShortage()
{
    if (std::string shortage = findShortageOfDescriptors(); !shortage.empty())
        return shortage;
    std::latch latch(1);
    std::vector<std::jthread> threads;
    const Opened opened{latch};
    try {
        while (threads.size() < threadsNeeded)
            threads.emplace_back([&latch] { latch.wait(); });
    } catch (const std::system_error& error) {
        return shortOf(std::to_string(threadsNeeded) + " threads and " + std::to_string(threads.size()) +
                           " can be started",
                       error.code().value(),
                       "raise the limits on threads and memory (ulimit -u, ulimit -v, pids.max of the control group)");
    }
    return findShortageOfMemory(); // while the stacks are there
}

} // namespace Trovio::Nodes
