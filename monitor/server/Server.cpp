#include "monitor/Server.h"

#include "base/QuietThread.h"
#include "explain/text/Escape.h"
#include "monitor/server/Hub.h"
#include "monitor/server/doors/SocketFolder.h"
#include "monitor/server/doors/TcpDoors.h"
#include "monitor/server/doors/UnixDoor.h"
#include "monitor/server/net/Transport.h"
#include "osg/Log.h"
#include "osg/LogMessage.h"
#include "trovio/Root.h"

#include <algorithm>
#include <stdexcept>

namespace Monitor {
namespace {

void warn(const std::string& text, const osg::SourcePlace& where = osg::SourcePlace::current())
{
    osg::logText(osg::LogWarning, "Monitor", "monitor", text, where);
}

// What is open of what was asked for, before a client can come.
struct Doors {
    explicit Doors(const ServerOptions& options);
    void open(const std::function<void()>& door);
    void openTcp(const std::string& address);

    std::unique_ptr<UnixDoor> _unix;
    std::vector<TcpDoor> _tcp;
    std::vector<std::string> _problems;
};

Doors::Doors(const ServerOptions& options)
{
    open([&] {
        _unix = std::make_unique<UnixDoor>(options.socketFolder.empty() ? socketFolder() : options.socketFolder);
    });
    if (!options.listen.empty())
        open([&] { openTcp(options.listen); });
}

void Doors::open(const std::function<void()>& door)
{
    try {
        door();
    } catch (const std::runtime_error& error) {
        _problems.emplace_back(error.what());
        warn("nobody can ask this program there: " + _problems.back());
    }
}

void Doors::openTcp(const std::string& text)
{
    const auto address = Explain::ListenAddress::read(text);
    if (!address)
        throw std::runtime_error(Explain::inQuotes(text) +
                                 " is no address to listen at; allowed: " + Explain::ListenAddress::Allowed);
    _tcp = openTcpDoors(*address);
}

// From other machines even reading needs one.
std::string tokenFor(const ServerOptions& options, const Doors& doors)
{
    const bool isOpenToOthers =
        std::ranges::any_of(doors._tcp, [](const TcpDoor& door) { return door._door == Door::Network; });
    return !doors._tcp.empty() && (options.write || isOpenToOthers) ? newToken() : std::string();
}

std::string nameOf(const SceneView& scene)
{
    return scene._name.empty() ? std::string(program_invocation_short_name) : scene._name;
}
} // namespace

class Server::State {
public:
    explicit State(ServerOptions options);
    ~State();

    Doors _doors;
    std::vector<std::string> _addresses;
    std::unique_ptr<Hub> _hub;
    std::unique_ptr<Transport> _transport; // goes before the hub, for its connections have streams of the hub
    std::thread _thread;
};

Server::State::State(ServerOptions options) : _doors(options)
{
    const std::string token = tokenFor(options, _doors);
    for (const TcpDoor& door : _doors._tcp)
        _addresses.push_back("http://" + door._address + "/" + (token.empty() ? "" : "?token=" + token));
    options.scene._name = nameOf(options.scene);
    options.scene._addresses = _addresses;
    const Hub::Network network{[this](std::function<void()> work) { _transport->post(std::move(work)); },
                               [this] { _transport->hurry(); }, std::chrono::steady_clock::now};
    _hub = std::make_unique<Hub>(std::move(options.scene), WhoMay(token, options.write), network);
    _transport = std::make_unique<Transport>(*_hub);
    if (_doors._unix)
        _transport->listen(_doors._unix->takeSocket(), Door::Unix);
    for (TcpDoor& door : _doors._tcp)
        _transport->listen(std::move(door._socket), door._door);
    _thread = Ostrel::quietThread("monitor", [this] { _transport->run(); });
}

// Who finds its connection closed, but no socket, knows that the program has ended in order.
Server::State::~State()
{
    _doors._unix.reset();
    _transport->stop();
    _thread.join();
    _hub->endAnswers();
}

Server::Server(ServerOptions options)
    : _state(Trovio::Root::initialized_
                 ? std::make_unique<State>(std::move(options))
                 : throw std::logic_error("a Monitor::Server needs the framework's root: make it after "
                                          "Trovio::Root::init(), or after the SceneRunner"))
{
}

Server::~Server() = default;

std::string Server::socketPath() const
{
    return _state->_doors._unix ? _state->_doors._unix->path() : std::string();
}

std::vector<std::string> Server::addresses() const
{
    return _state->_addresses;
}

std::vector<std::string> Server::problems() const
{
    return _state->_doors._problems;
}
} // namespace Monitor
