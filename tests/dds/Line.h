#pragma once

#include "base/Mutex.h"
#include "nodes/shared/FileDescriptor.h"
#include <array>
#include <chrono>
#include <deque>
#include <string>
#include <thread>
#include <vector>

namespace Trovio::Nodes {

/// A cable between two network interfaces, which are new and have their plug in this line: it can be cut.
/// Threads: a thread of its own carries the packets; the rest is for any thread.
class Line {
public:
    enum class Way { Both, FromFirst, FromSecond };

    /// Makes the interfaces in this process's network namespace. Throws std::system_error.
    Line(const std::string& firstInterface, const std::string& secondInterface);
    ~Line();
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    /// What leaves the interfaces named is lost.
    void cut(Way way);
    void mend();
    /// What leaves an interface comes to the other so much later.
    void delay(std::chrono::milliseconds eachWay);

private:
    struct Packet {
        std::chrono::steady_clock::time_point _due;
        std::size_t _to; // plug
        std::vector<char> _bytes;
    };
    void carry();
    int patience() const;
    void take(std::size_t from) OSTREL_EXCLUDES(_lock);
    void deliver();

    std::array<FileDescriptor, 2> _plugs;
    FileDescriptor _end;

    Ostrel::Mutex _lock;
    std::array<bool, 2> _cut OSTREL_GUARDED_BY(_lock){}; // by the plug that packets come from
    std::chrono::milliseconds _delay OSTREL_GUARDED_BY(_lock){};
    std::deque<Packet> _onTheWay; // the thread's

    std::thread _thread;
};

} // namespace Trovio::Nodes
