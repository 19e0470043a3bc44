#include "monitor/server/net/Transport.h"

#include "monitor/server/Guarded.h"
#include "monitor/server/net/Connection.h"

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <list>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <vector>

namespace Monitor {
namespace {

namespace asio = boost::asio;

using Problem = boost::system::error_code;

constexpr std::size_t maxRefused = 8; // clients that are just being told that there is no room

struct Client {
    std::weak_ptr<Connection> _connection;
    bool _isUnix;
    bool _isRefused;
};

// A peer that vanished without a word is noticed in two minutes, and small messages go at once.
void prepare(int socket, Door door)
{
    if (door == Door::Unix)
        return;
    const auto set = [socket](int level, int option, int value) {
        setsockopt(socket, level, option, &value, sizeof value);
    };
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
    set(IPPROTO_TCP, TCP_KEEPIDLE, 60); // seconds
    set(IPPROTO_TCP, TCP_KEEPINTVL, 15);
    set(IPPROTO_TCP, TCP_KEEPCNT, 4);
    set(IPPROTO_TCP, TCP_NODELAY, 1);
}

int familyOf(int socket)
{
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length);
    return address.ss_family;
}
} // namespace

class Transport::State {
public:
    State(Service& service, const Limits& limits, Clock now)
        : _service(service), _limits(limits), _around{service, _limits, std::move(now)}, _timer(_io)
    {
    }

    void accept(std::size_t listener);
    void takeIn(Descriptor socket, Door door);
    void expire();
    void arm();
    void tick();

    struct Listener {
        asio::posix::stream_descriptor _socket;
        Door _door;
    };

    Service& _service;
    const Limits _limits;
    const Connection::Around _around;
    std::list<Client> _clients;
    asio::io_context _io{1};
    std::vector<Listener> _listeners;
    asio::steady_timer _timer;
    bool _runs = false;
    bool _isArmed = false;
    std::vector<std::size_t> _resting; // listeners, while the system has no descriptor left
};

// A client whose descriptor the system refuses waits in the listener's queue until the next round.
void Transport::State::accept(std::size_t listener)
{
    Listener& from = _listeners[listener];
    from._socket.async_wait(asio::posix::stream_descriptor::wait_read, [this, listener](const Problem& problem) {
        if (problem)
            return;
        Listener& ready = _listeners[listener];
        Descriptor client(accept4(ready._socket.native_handle(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (client.get() < 0 && (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM)) {
            _resting.push_back(listener);
            return arm();
        }
        if (client.get() >= 0)
            guarded("taking a client in", [&] { takeIn(std::move(client), ready._door); });
        accept(listener);
    });
}

void Transport::State::takeIn(Descriptor socket, Door door)
{
    std::erase_if(_clients, [](const Client& client) { return client._connection.expired(); });
    const bool isUnix = door == Door::Unix;
    const auto count = [this, isUnix](bool refused) {
        return static_cast<std::size_t>(std::ranges::count_if(_clients, [isUnix, refused](const Client& client) {
            return client._isUnix == isUnix && client._isRefused == refused;
        }));
    };
    const bool isFull = count(false) >= _limits._clients;
    if (isFull && count(true) >= maxRefused)
        return;
    prepare(socket.get(), door);
    Problem problem;
    ClientSocket client(_io);
    client.assign(asio::generic::stream_protocol(familyOf(socket.get()), 0), socket.get(), problem);
    if (problem)
        return;
    socket.release();
    const auto connection = makeConnection(std::move(client), door, _around);
    _clients.push_back({connection, isUnix, isFull});
    connection->start(isFull ? std::optional("there are " + std::to_string(_limits._clients) +
                                             " clients already; try again when one has gone")
                             : std::nullopt);
    arm();
}

void Transport::State::expire()
{
    const auto now = _around._now();
    for (const Client& client : _clients)
        if (const auto connection = client._connection.lock())
            connection->expire(now);
    std::erase_if(_clients, [](const Client& client) { return client._connection.expired(); });
}

// Without clients nothing wakes.
void Transport::State::arm()
{
    if (!_runs || _isArmed || (_clients.empty() && _resting.empty()))
        return;
    _isArmed = true;
    _timer.expires_after(_service.pace());
    _timer.async_wait([this](const Problem& problem) {
        _isArmed = false;
        if (!problem)
            guarded("a round of the server", [this] { tick(); });
        arm();
    });
}

void Transport::State::tick()
{
    _service.tick();
    expire();
    for (const std::size_t listener : std::exchange(_resting, {}))
        accept(listener);
}

Transport::Transport(Service& service, const Limits& limits, Clock now)
    : _state(std::make_unique<State>(service, limits, std::move(now)))
{
}

Transport::~Transport() = default;

void Transport::listen(Descriptor socket, Door door)
{
    const int number = socket.get();
    _state->_listeners.push_back({asio::posix::stream_descriptor(_state->_io, number), door});
    socket.release();
    _state->accept(_state->_listeners.size() - 1);
}

void Transport::adopt(Descriptor socket, Door door)
{
    _state->takeIn(std::move(socket), door);
}

void Transport::run()
{
    _state->_runs = true;
    const auto work = asio::make_work_guard(_state->_io);
    while (!guarded("what a client wants", [this] { _state->_io.run(); })) {
    }
}

void Transport::stop()
{
    asio::post(_state->_io, [state = _state.get()] {
        for (const Client& client : state->_clients)
            if (const auto connection = client._connection.lock())
                connection->sayFarewell();
        state->_io.stop();
    });
}

void Transport::post(std::function<void()> work)
{
    asio::post(_state->_io, std::move(work));
}

void Transport::hurry()
{
    if (_state->_isArmed && _state->_timer.expiry() > std::chrono::steady_clock::now() + _state->_service.pace())
        _state->_timer.cancel();
}

void Transport::poll()
{
    _state->_io.restart();
    _state->_io.poll();
    _state->expire();
    _state->_io.poll();
}
} // namespace Monitor
