#pragma once

#include "base/Mutex.h"
#include "nodes/shared/FileDescriptor.h"
#include <array>
#include <random>
#include <string>
#include <thread>

namespace Trovio::Nodes {

/// A cable between two network interfaces, which are new and have their plug in this line: it can be cut, and can lose
/// and repeat what it carries, the same packets for the same seed and traffic.
/// Threads: a thread of its own carries the packets; the rest is for any thread.
class Line {
public:
    enum class Way { Both, FromFirst, FromSecond };

    /// Makes the interfaces in this process's network namespace. Throws std::system_error.
    Line(const std::string& firstInterface, const std::string& secondInterface, unsigned seed);
    ~Line();
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    /// What leaves the interfaces named is lost.
    void cut(Way way);
    void mend();
    /// Shares of all packets, from 0 to 1.
    void setFaults(double lost, double repeated);

private:
    void carry();
    void pass(std::size_t from);
    unsigned copies(std::size_t from) OSTREL_EXCLUDES(_lock);

    std::array<FileDescriptor, 2> _plugs;
    FileDescriptor _end;

    Ostrel::Mutex _lock;
    std::mt19937 _chance OSTREL_GUARDED_BY(_lock);
    std::array<bool, 2> _cut OSTREL_GUARDED_BY(_lock){}; // by the plug that packets come from
    double _lost OSTREL_GUARDED_BY(_lock) = 0.0;
    double _repeated OSTREL_GUARDED_BY(_lock) = 0.0;

    std::thread _thread;
};

} // namespace Trovio::Nodes
