#pragma once

#include "monitor/server/Hub.h"
#include "monitor/server/net/Transport.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

/// The server without its thread, its sockets and its clock: a test moves it by hand.
class ServerBench {
public:
    explicit ServerBench(const std::string& token = {}, bool write = false, std::vector<std::string> pageFolders = {})
    {
        Trovio::Root::init();
        _hub = std::make_unique<Monitor::Hub>(
            Monitor::SceneView{}, Monitor::WhoMay(token, write),
            Monitor::Hub::Network{[this](std::function<void()> work) { _transport->post(std::move(work)); }, [] {},
                                  [this] { return _now; }},
            std::move(pageFolders));
        _transport = std::make_unique<Monitor::Transport>(*_hub, Monitor::Limits{}, [this] { return _now; });
    }
    ~ServerBench()
    {
        _hub->endAnswers();
        _transport.reset();
        _hub.reset();
        Trovio::Root::shutdown();
    }

    void pass(std::chrono::seconds time)
    {
        _now += time;
        _hub->tick();
        _transport->poll();
    }
    std::chrono::milliseconds pace() const { return _hub->pace(); }
    /// A round of the taps.
    void round()
    {
        _hub->tick();
        _transport->poll();
    }
    Monitor::Transport& transport() { return *_transport; }

private:
    std::chrono::steady_clock::time_point _now = std::chrono::steady_clock::now();
    std::unique_ptr<Monitor::Hub> _hub;
    std::unique_ptr<Monitor::Transport> _transport;
};

/// One client of it, on the test's thread.
class BenchClient {
public:
    explicit BenchClient(ServerBench& bench, Monitor::Door door = Monitor::Door::Unix) : _bench(bench)
    {
        int ends[2] = {};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends), 0);
        _socket = Monitor::Descriptor(ends[0]);
        bench.transport().adopt(Monitor::Descriptor(ends[1]), door);
    }

    /// Whatever finds no room is sent while the server reads.
    void send(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const auto sent = ::send(_socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent < 0 && errno != EAGAIN)
                return; // the server has had enough
            bytes.remove_prefix(sent > 0 ? static_cast<std::size_t>(sent) : 0);
            _bench.transport().poll();
        }
    }
    void endSending() { shutdown(_socket.get(), SHUT_WR); }

    /// Reads until that text has come, or the server has closed; whether it has come.
    bool waitFor(std::string_view text)
    {
        while (_read.find(text, _taken) == _read.npos)
            if (!readMore())
                return false;
        return true;
    }
    std::string readAll()
    {
        while (readMore())
            ;
        return _read.substr(_taken);
    }
    /// Reads until there are so many bytes, and takes them; fewer where the server has closed.
    std::string take(std::size_t bytes)
    {
        while (_read.size() - _taken < bytes && readMore())
            ;
        std::string taken = _read.substr(_taken, bytes);
        _taken += taken.size();
        return taken;
    }
    std::string takeUpTo(std::string_view end)
    {
        return waitFor(end) ? take(_read.find(end, _taken) + end.size() - _taken) : std::string();
    }

private:
    bool readMore()
    {
        _read.erase(0, std::exchange(_taken, 0));
        for (;;) {
            _bench.transport().poll();
            std::array<char, 65536> bytes{};
            const auto count = recv(_socket.get(), bytes.data(), bytes.size(), 0);
            if (count > 0)
                _read.append(bytes.data(), static_cast<std::size_t>(count));
            if (count >= 0 || errno != EAGAIN)
                return count > 0;
            pollfd ready{_socket.get(), POLLIN, 0};
            poll(&ready, 1, 1); // answers may come from another thread of the server
        }
    }

    ServerBench& _bench;
    Monitor::Descriptor _socket;
    std::string _read;
    std::size_t _taken = 0; // of it
};
