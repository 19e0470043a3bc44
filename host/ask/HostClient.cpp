#include "host/ask/HostClient.h"

#include "explain/text/Escape.h"
#include "host/ExitCode.h"
#include "host/ask/Steady.h"

#include <algorithm>
#include <array>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace Host {

using namespace Explain;
namespace Http = boost::beast::http;

namespace {

constexpr std::size_t maxAnswer = 256u << 20; // bytes of an answer that is kept whole

int codeFor(unsigned status)
{
    return status == 404 ? NothingFound : status == 400 || status == 413 ? BadUsage : Failed;
}

// What the host says of a refusal, which is JSON with the text in it.
std::string refusal(const std::string& body)
{
    const auto said = nlohmann::json::parse(body, nullptr, false);
    const bool hasText = said.is_object() && said.contains("error") && said["error"].is_string();
    return escaped(hasText ? said["error"].get<std::string>() : body, 4000);
}
// Takes whole lines from the front of the text; false once one of them was enough.
bool useLines(std::string& text, const HostClient::UseLine& use)
{
    std::size_t begin = 0;
    bool wantsMore = true;
    for (std::size_t end; wantsMore && (end = text.find('\n', begin)) != std::string::npos; begin = end + 1)
        wantsMore = use(std::string_view(text).substr(begin, end - begin));
    text.erase(0, begin);
    return wantsMore;
}
} // namespace

std::string encoded(std::string_view text)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x80 && (std::isalnum(code) != 0 || std::strchr("-._~/", byte) != nullptr))
            result += byte;
        else
            result.append({'%', digits[code >> 4U], digits[code & 15U]});
    }
    return result;
}

std::string queryText(std::initializer_list<std::pair<const char*, std::string>> pairs)
{
    std::string query;
    for (const auto& [name, value] : pairs)
        if (!value.empty())
            query += (query.empty() ? "?" : "&") + std::string(name) + "=" + encoded(value);
    return query;
}

/// Takes an answer apart as its bytes come.
class HostClient::Answer {
public:
    explicit Answer(boost::optional<std::uint64_t> limit)
    {
        _parser.body_limit(limit);
        _parser.eager(true);
    }

    bool isDone() const { return _parser.is_done(); }
    unsigned status() const { return _parser.is_header_done() ? _parser.get().result_int() : 0; }
    bool keepsAlive() const { return _parser.keep_alive(); }
    /// What has come of the body since the last call.
    std::string takeBody() { return std::exchange(_parser.get().body(), {}); }

    /// False for what is no HTTP, or longer than the limit.
    bool put(std::string_view bytes)
    {
        _held += bytes;
        boost::system::error_code error;
        std::size_t used = 0;
        while (!error && used < _held.size() && !isDone())
            used += _parser.put(boost::asio::buffer(_held.data() + used, _held.size() - used), error);
        _held.erase(0, used);
        return !error || error == Http::error::need_more;
    }

private:
    Http::response_parser<Http::string_body> _parser;
    std::string _held; // begun, and not to be understood without what follows
};

HostClient::HostClient(std::string socketPath, std::string name) : _path(std::move(socketPath)), _name(std::move(name))
{
    if (const int error = connect(); error != 0)
        throw AskError(NothingFound, "no host answers at " + inQuotes(_path) + ": " + std::strerror(error));
}

HostClient::~HostClient()
{
    if (_socket >= 0)
        close(_socket);
}

// Returns what the system says; 0 where it did.
int HostClient::connect()
{
    if (_socket >= 0)
        close(_socket);
    sockaddr_un address = {AF_UNIX, {}};
    if (_path.size() >= sizeof address.sun_path)
        throw AskError(BadUsage, "the path of a socket may have " + std::to_string(sizeof address.sun_path - 1) +
                                     " bytes, this one has more: " + inQuotes(_path));
    _path.copy(address.sun_path, _path.size());
    _socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isConnected =
        _socket >= 0 && ::connect(_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    return isConnected ? 0 : errno;
}

// Who ends in order takes its socket away; a killed host leaves it.
void HostClient::reconnect()
{
    const int error = connect();
    if (error == ENOENT)
        throw HostEnded(Failed, _name + " has ended");
    if (error != 0)
        throw AskError(Failed, _name + " does not answer any more");
}

// A connection that the host has closed since the last answer is readable, and made anew. A host that has had enough of
// the question says so before it closes.
void HostClient::send(const HostQuestion& question)
{
    if (pollfd idle = {_socket, POLLIN, 0}; poll(&idle, 1, 0) != 0)
        reconnect();
    std::string text = question._method + " " + question._target + " HTTP/1.1\r\nHost: localhost\r\n";
    if (question._method != "GET")
        text += "Content-Type: application/json\r\nContent-Length: " + std::to_string(question._body.size()) + "\r\n";
    text += "\r\n" + question._body;
    for (std::string_view left = text; !left.empty();) {
        const ssize_t sent = ::send(_socket, left.data(), left.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR)
            return;
        left.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    }
}

// The connection is closed in the middle of an answer.
void HostClient::throwForEnd() const
{
    const std::string text = _name + " has ended before its answer did";
    if (access(_path.c_str(), F_OK) != 0 && errno == ENOENT)
        throw HostEnded(Failed, text);
    throw AskError(Failed, text);
}

HostClient::News HostClient::receive(Answer& answer, double deadline, bool watchesOutput)
{
    std::array<pollfd, 2> news{{{_socket, POLLIN, 0}, {watchesOutput ? STDOUT_FILENO : -1, 0, 0}}};
    while (poll(news.data(), news.size(), millisecondsOf(deadline - steadySeconds())) < 0 && errno == EINTR) {
    }
    if ((news[1].revents & (POLLERR | POLLHUP)) != 0)
        return News::ReaderGone;
    if (news[0].revents == 0)
        return News::Silence;
    std::array<char, 65536> bytes; // NOLINT(*-member-init): filled by recv
    const ssize_t count = recv(_socket, bytes.data(), bytes.size(), 0);
    if (count <= 0)
        throwForEnd();
    if (!answer.put({bytes.data(), static_cast<std::size_t>(count)}))
        throw AskError(Failed,
                       _name + " answers what is no HTTP, or more than " + std::to_string(maxAnswer >> 20) + " MiB");
    return News::Part;
}

std::string HostClient::ask(const HostQuestion& question, double patience)
{
    send(question);
    Answer answer(maxAnswer);
    while (!answer.isDone())
        if (receive(answer, steadySeconds() + patience, false) == News::Silence)
            throw AskError(NoAnswer, _name + " has said nothing for " + std::to_string(std::lround(patience)) + " s");
    if (!answer.keepsAlive())
        shutdown(_socket, SHUT_RDWR); // which makes it readable
    std::string body = answer.takeBody();
    if (answer.status() != 200)
        throw AskError(codeFor(answer.status()), refusal(body));
    return body;
}

HostClient::StreamEnd HostClient::follow(const HostQuestion& question, double seconds, const UseLine& use)
{
    constexpr double silence = 0.1; // seconds
    send(question);
    const double end = steadySeconds() + seconds;
    Answer answer(boost::none);
    std::string text;
    while (!answer.isDone()) {
        const double now = steadySeconds();
        const News news = now < end ? receive(answer, std::min(end, now + silence), true) : News::Silence;
        if (now >= end)
            return StreamEnd::TimeOver;
        if (news == News::ReaderGone || (news == News::Silence && !use({})))
            return StreamEnd::Enough;
        if (answer.status() == 200 && !useLines(text += answer.takeBody(), use))
            return StreamEnd::Enough;
    }
    if (answer.status() != 200)
        throw AskError(codeFor(answer.status()), refusal(answer.takeBody()));
    return StreamEnd::Complete;
}
} // namespace Host
