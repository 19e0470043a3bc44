#include "nodes/shared/NameLookup.h"

#include "base/Mutex.h"
#include <csignal>
#include <netdb.h>
#include <vector>

namespace Trovio::Nodes {

namespace {

/// What the C library works on in a thread of its own, so that nobody has to wait for a name server, not even stop().
struct Request {
    std::string _host;
    std::uint16_t _port = 0;
    addrinfo _wanted{};
    gaicb _control{};

    ~Request()
    {
        if (_control.ar_result)
            ::freeaddrinfo(_control.ar_result);
    }
};

/// Lookups that were given up but could not be called back: the C library writes into them when they end, and only then
/// may their memory go.
/// Threads: any.
class AbandonedRequests {
public:
    static AbandonedRequests& get()
    {
        static AbandonedRequests requests;
        return requests;
    }

    /// Those that are still under way when the program ends are left to the C library.
    ~AbandonedRequests()
    {
        sweep();
        for (auto& request : _requests)
            static_cast<void>(request.release());
    }

    void add(std::unique_ptr<Request> request)
    {
        sweep();
        const Ostrel::LockGuard guard(_lock);
        _requests.push_back(std::move(request));
    }

private:
    void sweep()
    {
        const Ostrel::LockGuard guard(_lock);
        std::erase_if(_requests, [](const auto& request) { return ::gai_error(&request->_control) != EAI_INPROGRESS; });
    }

    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::vector<std::unique_ptr<Request>> _requests OSTREL_GUARDED_BY(_lock);
};

class SystemLookup final : public NameLookup {
public:
    ~SystemLookup() override { cancel(); }

    void begin(const std::string& host, std::uint16_t port) override
    {
        cancel();
        _request = std::make_unique<Request>();
        _request->_host = host;
        _request->_port = port;
        _request->_wanted.ai_socktype = SOCK_DGRAM;
        _request->_wanted.ai_flags = AI_ADDRCONFIG;
        _request->_control.ar_name = _request->_host.c_str();
        _request->_control.ar_request = &_request->_wanted;
        gaicb* list[] = {&_request->_control};
        sigevent silent{};
        silent.sigev_notify = SIGEV_NONE;
        _problem = ::getaddrinfo_a(GAI_NOWAIT, list, 1, &silent);
    }

    std::optional<Answer> poll() override
    {
        if (!_request)
            return Answer{{}, "nothing was asked"};
        const int state = _problem != 0 ? _problem : ::gai_error(&_request->_control);
        if (state == EAI_INPROGRESS)
            return std::nullopt;
        const auto request = std::move(_request);
        const addrinfo* found = request->_control.ar_result;
        if (state != 0 || !found)
            return Answer{{}, ::gai_strerror(state)};
        SocketAddress address(found->ai_addr, found->ai_addrlen);
        address.setPort(request->_port);
        return Answer{address, {}};
    }

    void cancel() override
    {
        if (_request && _problem == 0 && ::gai_cancel(&_request->_control) == EAI_NOTCANCELED)
            AbandonedRequests::get().add(std::move(_request));
        _request.reset();
    }

private:
    std::unique_ptr<Request> _request;
    int _problem = 0; // with asking
};

} // namespace

std::unique_ptr<NameLookup> NameLookup::system()
{
    return std::make_unique<SystemLookup>();
}

} // namespace Trovio::Nodes
