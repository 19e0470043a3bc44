#include "monitor/server/net/Connection.h"

#include <array>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <cstdio>
#include <limits>
#include <sys/socket.h>
#include <utility>

namespace Monitor {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;

using Problem = beast::error_code;
using WebSocket = websocket::stream<ClientSocket>;

constexpr std::string_view lastChunk = "0\r\n\r\n";

std::string textOf(const http::fields& fields, http::field field)
{
    return fields[field].to_string();
}

// The head as the rest of the program sees it. False where the target cannot be read.
bool readHead(const http::request<http::string_body>& request, RequestHead& head)
{
    head._method = request.method_string().to_string();
    head._host = textOf(request, http::field::host);
    head._origin = textOf(request, http::field::origin);
    head._authorization = textOf(request, http::field::authorization);
    head._accept = textOf(request, http::field::accept);
    head._knownTags = textOf(request, http::field::if_none_match);
    head._subprotocols = readList(textOf(request, http::field::sec_websocket_protocol));
    head._wantsWebSocket = websocket::is_upgrade(request);
    return readTarget(std::string_view(request.target().data(), request.target().size()), head);
}

// What to tell a client whose request cannot be read; nothing where nobody is there to be told.
std::optional<Answer> answerTo(Problem problem, const Limits& limits)
{
    if (problem == http::error::body_limit)
        return errorAnswer(413, "the body is larger than " + std::to_string(limits._body) + " bytes");
    if (problem == http::error::header_limit || problem == http::error::buffer_overflow)
        return errorAnswer(431, "the head of the request is larger than " + std::to_string(limits._head) + " bytes");
    if (problem == http::error::partial_message)
        return errorAnswer(400, "the request ended in its middle");
    if (problem != http::error::end_of_stream &&
        problem.category() == make_error_code(http::error::bad_line_ending).category())
        return errorAnswer(400, "no HTTP/1.1 request: " + problem.message());
    return std::nullopt;
}

class BeastConnection final : public Connection, public Exchange, public std::enable_shared_from_this<BeastConnection> {
public:
    BeastConnection(ClientSocket socket, Door door, const Around& around)
        : _around(around), _door(door), _socket(std::move(socket)), _buffer(around._limits._head + 1)
    {
    }

    void start(const std::optional<std::string>& refusal) override;
    void expire(SteadyTime now) override;
    void sayFarewell() override;
    void close() override;

    void reply(Answer answer) override;
    void replyWith(std::unique_ptr<Stream> stream) override;
    std::shared_ptr<const std::atomic<bool>> gone() const override { return _gone; }

private:
    enum class Phase { Idle, Reading, Answering, Writing, Streaming, Leaving, Gone };

    ClientSocket& socket() { return _webSocket ? _webSocket->next_layer() : _socket; }
    /// From now on in this phase, for so long; without a time for ever.
    void enter(Phase phase, std::optional<std::chrono::seconds> patience = std::nullopt);
    /// A handler of something that is under way: calls `member` and keeps the connection alive until then.
    template <class Member>
    auto then(Member member)
    {
        return [self = shared_from_this(), member](const Problem& problem, auto&&... ignored) {
            ((void)ignored, ...);
            if (self->_phase != Phase::Gone)
                ((*self).*member)(problem);
        };
    }

    void awaitRequest();
    void readRequest(const Problem& problem);
    void takeHead(const Problem& problem);
    std::optional<Answer> judge();
    void readBody();
    void takeBody(const Problem& problem);
    void watchForLeaving();
    void endRequest(Problem problem);
    void send(Answer answer, bool isLast);
    void endReply(const Problem& problem);
    void leave();
    void discard(const Problem& problem);

    void acceptWebSocket();
    void beginSocket(const Problem& problem);
    void readMessage();
    void takeMessage(const Problem& problem);
    void beginLines(const Problem& problem);
    void watchForEnd();
    void useStream(std::unique_ptr<Stream> stream);
    void sendNext();
    void endMessage(const Problem& problem);
    void endStream();

    const Around& _around;
    const Door _door;
    ClientSocket _socket;
    std::optional<WebSocket> _webSocket; // has the socket then
    beast::flat_buffer _buffer;
    std::optional<http::request_parser<http::string_body>> _parser;
    RequestHead _head;
    std::optional<http::response<http::string_body>> _response;

    std::unique_ptr<Stream> _stream;
    std::string _subprotocol;
    std::string _frame; // what stands before a line of JSON
    bool _isSending = false;
    bool _isReading = false; // a message of a WebSocket
    unsigned _holds = 0;     // on what it says
    std::array<char, 4096> _ignored{};
    std::size_t _discarded = 0;

    Phase _phase = Phase::Idle;
    bool _expired = false;                    // the request took too long
    std::shared_ptr<std::atomic<bool>> _gone; // before the answer to the request
    SteadyTime _deadline = SteadyTime::max();
};

void BeastConnection::enter(Phase phase, std::optional<std::chrono::seconds> patience)
{
    if (_phase == Phase::Gone)
        return;
    _phase = phase;
    _deadline = patience ? _around._now() + *patience : SteadyTime::max();
}

void BeastConnection::start(const std::optional<std::string>& refusal)
{
    if (refusal)
        return send(errorAnswer(503, *refusal), true);
    awaitRequest();
}

void BeastConnection::close()
{
    _phase = Phase::Gone;
    Problem ignored;
    socket().close(ignored);
}

void BeastConnection::expire(SteadyTime now)
{
    if (now < _deadline)
        return;
    if (_phase != Phase::Reading)
        return close();
    _expired = true;
    Problem ignored;
    _socket.cancel(ignored);
}

// The time of a request counts from its first byte.
void BeastConnection::awaitRequest()
{
    enter(Phase::Idle, _around._limits._idle);
    if (_buffer.size() > 0)
        return readRequest({});
    _socket.async_wait(ClientSocket::wait_read, then(&BeastConnection::readRequest));
}

void BeastConnection::readRequest(const Problem& problem)
{
    if (problem)
        return close();
    enter(Phase::Reading, _around._limits._request);
    _expired = false;
    _gone = std::make_shared<std::atomic<bool>>(false);
    _head = {};
    _parser.emplace();
    _parser->header_limit(static_cast<std::uint32_t>(_around._limits._head));
    _parser->body_limit(_around._limits._body);
    http::async_read_header(_socket, _buffer, *_parser, then(&BeastConnection::takeHead));
}

void BeastConnection::endRequest(Problem problem)
{
    if (_expired)
        return send(
            errorAnswer(408, "the request took longer than " + std::to_string(_around._limits._request.count()) + " s"),
            true);
    if (const auto answer = answerTo(problem, _around._limits))
        return send(*answer, true);
    close();
}

std::optional<Answer> BeastConnection::judge()
{
    const auto& request = _parser->get();
    if (static_cast<std::size_t>(std::distance(request.begin(), request.end())) > _around._limits._fields)
        return errorAnswer(431, "the head has more than " + std::to_string(_around._limits._fields) + " fields");
    if (!readHead(request, _head))
        return errorAnswer(400, "the address has a '%' without two hexadecimal digits behind it");
    return _around._service.refusal(_head, _door);
}

void BeastConnection::takeHead(const Problem& problem)
{
    if (problem)
        return endRequest(problem);
    if (const auto refusal = judge())
        return send(*refusal, true);
    if (_head._wantsWebSocket)
        return acceptWebSocket();
    if (beast::iequals(_parser->get()[http::field::expect], "100-continue")) {
        static constexpr std::string_view goOn = "HTTP/1.1 100 Continue\r\n\r\n";
        asio::async_write(_socket, asio::buffer(goOn.data(), goOn.size()),
                          [self = shared_from_this()](const Problem&, std::size_t) { self->readBody(); });
        return;
    }
    readBody();
}

void BeastConnection::readBody()
{
    if (_phase == Phase::Gone)
        return;
    enter(Phase::Reading, _around._limits._request);
    http::async_read(_socket, _buffer, *_parser, then(&BeastConnection::takeBody));
}

void BeastConnection::takeBody(const Problem& problem)
{
    if (problem)
        return endRequest(problem);
    enter(Phase::Answering);
    watchForLeaving();
    _around._service.ask(_head, _door, std::move(_parser->get().body()), shared_from_this());
}

// Once: a client that sends its next question before the answer is there, and then goes, is not noticed.
void BeastConnection::watchForLeaving()
{
    _socket.async_wait(ClientSocket::wait_read, [self = shared_from_this(), gone = _gone](const Problem& problem) {
        if (problem || self->_phase != Phase::Answering)
            return;
        char next = 0;
        const auto count = recv(self->_socket.native_handle(), &next, 1, MSG_PEEK | MSG_DONTWAIT);
        *gone = count == 0 || (count < 0 && errno == ECONNRESET);
    });
}

void BeastConnection::reply(Answer answer)
{
    if (_phase == Phase::Answering)
        send(std::move(answer), !_parser->keep_alive());
}

// Without a body where none may be: to HEAD, which hears its length, and where the client has it already.
void BeastConnection::send(Answer answer, bool isLast)
{
    enter(Phase::Writing, _around._limits._idle);
    _response.emplace(static_cast<http::status>(answer._status), 11);
    _response->set(http::field::content_type, answer._type);
    _response->set(http::field::cache_control, "no-store");
    _response->set("X-Content-Type-Options", "nosniff");
    for (const auto& [name, value] : answer._fields)
        _response->set(name, value);
    if (_response->result() != http::status::not_modified)
        _response->content_length(answer._body.size());
    if (_head._method != "HEAD")
        _response->body() = std::move(answer._body);
    _response->keep_alive(!isLast);
    http::async_write(_socket, *_response, then(&BeastConnection::endReply));
}

void BeastConnection::endReply(const Problem& problem)
{
    if (problem)
        return close();
    const bool isLast = !_response->keep_alive();
    _response.reset();
    isLast ? leave() : awaitRequest();
}

// A connection that is closed while bytes of the client wait is reset, and the client would not see the answer: so what
// still comes is read for a while.
void BeastConnection::leave()
{
    enter(Phase::Leaving, _around._limits._leaving);
    Problem ignored;
    socket().shutdown(ClientSocket::shutdown_send, ignored);
    _discarded = _buffer.size();
    discard({});
}

void BeastConnection::discard(const Problem& problem)
{
    if (problem || _discarded > 2 * _around._limits._body)
        return close();
    socket().async_read_some(asio::buffer(_ignored), [self = shared_from_this()](const Problem& ended, std::size_t n) {
        self->_discarded += n;
        self->discard(ended);
    });
}

void BeastConnection::useStream(std::unique_ptr<Stream> stream)
{
    _stream = std::move(stream);
    _stream->queue().setWake([this] { sendNext(); });
    _stream->setHoldOff([this]() -> std::function<void()> {
        ++_holds;
        return [self = shared_from_this()] {
            --self->_holds;
            self->readMessage();
        };
    });
}

void BeastConnection::acceptWebSocket()
{
    useStream(_around._service.openSocket(_head, _door, _subprotocol));
    _webSocket.emplace(std::move(_socket));
    _webSocket->read_message_max(_around._limits._body);
    // Each piece is a call of the system; a pong waits for the end of one.
    _webSocket->write_buffer_bytes(64 * 1024);
    _webSocket->set_option(websocket::stream_base::decorator([this](websocket::response_type& response) {
        response.set(http::field::sec_websocket_protocol, _subprotocol);
    }));
    enter(Phase::Writing, _around._limits._request);
    _isSending = true; // until the handshake is over
    _webSocket->async_accept(_parser->get(), then(&BeastConnection::beginSocket));
}

void BeastConnection::beginSocket(const Problem& problem)
{
    if (problem)
        return close();
    enter(Phase::Streaming);
    _isSending = false;
    _buffer = beast::flat_buffer(_around._limits._body + 1);
    _stream->opened();
    readMessage();
    sendNext();
}

void BeastConnection::readMessage()
{
    if (_isReading || _holds > 0 || (_phase != Phase::Streaming && _phase != Phase::Leaving))
        return;
    _isReading = true;
    _webSocket->async_read(_buffer, then(&BeastConnection::takeMessage));
}

void BeastConnection::takeMessage(const Problem& problem)
{
    if (problem)
        return close();
    const auto bytes = _buffer.cdata();
    _stream->received({static_cast<const char*>(bytes.data()), bytes.size()}, _webSocket->got_binary());
    _buffer.consume(_buffer.size());
    _isReading = false;
    readMessage();
}

void BeastConnection::replyWith(std::unique_ptr<Stream> stream)
{
    if (_phase != Phase::Answering)
        return;
    useStream(std::move(stream));
    enter(Phase::Streaming);
    _isSending = true; // the head first
    static constexpr std::string_view head = "HTTP/1.1 200 OK\r\nContent-Type: application/x-ndjson\r\n"
                                             "Cache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\n"
                                             "Connection: close\r\nTransfer-Encoding: chunked\r\n\r\n";
    asio::async_write(_socket, asio::buffer(head.data(), head.size()), then(&BeastConnection::beginLines));
}

void BeastConnection::beginLines(const Problem& problem)
{
    if (problem)
        return close();
    _isSending = false;
    _stream->opened();
    watchForEnd();
    sendNext();
}

// Nothing more is to come from a client that reads lines; that it went is seen here.
void BeastConnection::watchForEnd()
{
    _socket.async_read_some(asio::buffer(_ignored), [self = shared_from_this()](const Problem& problem, std::size_t) {
        if (self->_phase != Phase::Streaming)
            return;
        problem ? self->close() : self->watchForEnd();
    });
}

void BeastConnection::sendNext()
{
    if (_isSending || _phase != Phase::Streaming)
        return;
    if (_stream->queue().empty())
        return _stream->queue().isFinished() ? endStream() : void();
    _isSending = true;
    _deadline = _around._now() + _around._limits._stuck;
    const OutMessage& message = _stream->queue().front();
    const auto bytes = asio::buffer(message._bytes);
    if (_webSocket) {
        _webSocket->binary(message._isBinary);
        return _webSocket->async_write(bytes, then(&BeastConnection::endMessage));
    }
    std::array<char, 24> size{};
    std::snprintf(size.data(), size.size(), "%zx\r\n", message._bytes.size());
    _frame = size.data();
    const std::array<asio::const_buffer, 3> parts = {asio::buffer(std::as_const(_frame)), bytes,
                                                     asio::buffer("\r\n", 2)};
    asio::async_write(_socket, parts, then(&BeastConnection::endMessage));
}

void BeastConnection::endMessage(const Problem& problem)
{
    if (problem)
        return close();
    _isSending = false;
    _deadline = SteadyTime::max();
    _stream->queue().sent();
    if (_stream->queue().empty())
        _stream->drained();
    sendNext();
}

// The end of the lines, or the close frame with code 1001, going away. In the middle of a message it would be a part of
// it.
void BeastConnection::sayFarewell()
{
    static constexpr std::string_view goingAway = "\x88\x02\x03\xE9";
    if (_phase != Phase::Streaming || _isSending)
        return;
    Problem ignored;
    socket().non_blocking(true, ignored);
    socket().write_some(asio::buffer(_webSocket ? goingAway : lastChunk), ignored);
}

void BeastConnection::endStream()
{
    enter(Phase::Leaving, _around._limits._leaving);
    if (_webSocket)
        return _webSocket->async_close({websocket::close_code::policy_error, "what was sent was not taken"},
                                       [self = shared_from_this()](const Problem&) { self->close(); });
    _isSending = true;
    asio::async_write(_socket, asio::buffer(lastChunk),
                      [self = shared_from_this()](const Problem&, std::size_t) { self->close(); });
}
} // namespace

std::shared_ptr<Connection> makeConnection(ClientSocket socket, Door door, const Connection::Around& around)
{
    return std::make_shared<BeastConnection>(std::move(socket), door, around);
}
} // namespace Monitor
