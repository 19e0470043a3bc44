// First line: "unix", "loopback" or "network". Below: the bytes that a client sends there. They go through a connection
// as they come from a socket, to a service that judges as the real one does and answers at once.
#include "fuzz/Fuzz.h"
#include "monitor/server/doors/WhoMay.h"
#include "monitor/server/net/Transport.h"

#include <array>
#include <poll.h>
#include <sys/socket.h>

namespace Fuzz {

namespace {

using namespace Monitor;

constexpr const char* token = "0123456789abcdef0123456789abcdef";

Door doorOf(std::string_view name)
{
    return name == "unix" ? Door::Unix : name == "network" ? Door::Network : Door::Loopback;
}

/// Says back what it is told.
class Echo final : public Stream {
public:
    void received(std::string_view message, bool) override
    {
        if (!queue().putWords(std::string(message)))
            queue().finish();
    }
    void take(const SeenRecord&) override {}
    void endRound() override {}
};

class Judge final : public Service {
public:
    std::optional<Answer> refusal(const RequestHead& head, Door door) override
    {
        if (const auto refused = _whoMay.refusal(head, door)) {
            require(isPrintable(*refused), "a refusal says what is wrong");
            return Answer{403, "text/plain", *refused};
        }
        require(door == Door::Unix || head._method == "GET" || head._method == "HEAD" || _whoMay.mayWrite(head, door),
                "TCP without the token is for reading");
        if (head._wantsWebSocket && head._subprotocols.empty())
            return Answer{400, "text/plain", "no subprotocol"};
        return std::nullopt;
    }
    void ask(const RequestHead& head, Door, std::string body, std::shared_ptr<Exchange> exchange) override
    {
        require(body.size() <= Limits()._body, "no body is longer than it may be");
        if (head._path != "/stream")
            return exchange->reply({200, "text/plain", head._path});
        auto stream = std::make_unique<Echo>();
        stream->queue().finish();
        exchange->replyWith(std::move(stream));
    }
    std::unique_ptr<Stream> openSocket(const RequestHead& head, Door, std::string& subprotocol) override
    {
        subprotocol = head._subprotocols.front();
        return std::make_unique<Echo>();
    }
    void tick() override {}
    std::chrono::milliseconds pace() const override { return std::chrono::seconds(1); }

private:
    const WhoMay _whoMay{token, true};
};

/// What the server answers until it closes. Should it never close, the fuzzer's time-out tells.
std::string answerTo(std::string_view request, Door door)
{
    static Judge judge;
    static Transport transport(judge);
    std::array<int, 2> ends{};
    require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) == 0, "there are sockets");
    const Descriptor client(ends[0]);
    transport.adopt(Descriptor(ends[1]), door);
    if (send(client.get(), request.data(), request.size(), MSG_NOSIGNAL) < 0 || shutdown(client.get(), SHUT_WR) != 0)
        return {};
    std::string answer;
    std::array<char, 4096> bytes{};
    for (ssize_t count = 1; count != 0;) {
        transport.poll();
        count = recv(client.get(), bytes.data(), bytes.size(), 0);
        if (count < 0 && errno != EAGAIN)
            break;
        answer.append(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return answer;
}

} // namespace

void runOnce(std::string_view input)
{
    const Door door = doorOf(takeLine(input));
    const std::string answer = answerTo(input, door);
    require(answer.empty() || answer.starts_with("HTTP/1.1 "), "what is said is HTTP");
}

} // namespace Fuzz
