#include "nodes/mqtt/MqttClient.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <mosquitto.h>
#include <mqtt_protocol.h>
#include <new>
#include <poll.h>
#include <unistd.h>

namespace Trovio::Nodes {

namespace {

constexpr int maxReadsAtOnce = 256;
constexpr int farewellMilliseconds = 200;
constexpr const char* systemCertificates = "/etc/ssl/certs";

/// The library itself, for as long as there is a client.
class Library {
public:
    Library() { mosquitto_lib_init(); }
    ~Library() { mosquitto_lib_cleanup(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

const char* orNull(const std::string& text)
{
    return text.empty() ? nullptr : text.c_str();
}

/// The library's sentences, for the middle of ours.
std::string withoutStop(std::string text)
{
    while (!text.empty() && (text.back() == '.' || text.back() == '\n'))
        text.pop_back();
    return text;
}

/// What the broker answered, and what helps where it does not know us.
std::string describeRefusal(int code, bool isVersion5)
{
    const bool isLogin = isVersion5
                             ? code == MQTT_RC_BAD_USERNAME_OR_PASSWORD || code == MQTT_RC_NOT_AUTHORIZED
                             : code == CONNACK_REFUSED_BAD_USERNAME_PASSWORD || code == CONNACK_REFUSED_NOT_AUTHORIZED;
    return withoutStop(isVersion5 ? mosquitto_reason_string(code) : mosquitto_connack_string(code)) +
           (isLogin ? "; see 'user' and 'passwordfile'" : "");
}

/// In place of a question at the terminal.
int refusePassphrase(char*, int, int, void*)
{
    return 0;
}

} // namespace

struct MqttClient::Callbacks {
    static void connected(mosquitto*, void* self, int code) noexcept
    {
        auto& client = *static_cast<MqttClient*>(self);
        client._isAccepted = code == 0;
        if (code != 0)
            client._refusal = describeRefusal(code, client._connection._isVersion5);
    }

    static void disconnected(mosquitto*, void* self, int code) noexcept
    {
        auto& client = *static_cast<MqttClient*>(self);
        client._isAccepted = false;
        if (code >= 128 && client._refusal.empty())
            client._refusal = withoutStop(mosquitto_reason_string(code));
    }

    static void published(mosquitto*, void* self, int) noexcept
    {
        auto& client = *static_cast<MqttClient*>(self);
        --client._unconfirmed;
        client._listener.messageSent();
    }

    static void arrived(mosquitto*, void* self, const mosquitto_message* message) noexcept
    {
        const auto size = static_cast<std::size_t>(message->payloadlen);
        const std::string_view payload(size == 0 ? "" : static_cast<const char*>(message->payload), size);
        static_cast<MqttClient*>(self)->_listener.messageArrived(message->topic, payload, message->retain);
    }

    static void subscribed(mosquitto*, void* self, int, int count, const int* granted) noexcept
    {
        auto& client = *static_cast<MqttClient*>(self);
        for (int i = 0; i < count && static_cast<std::size_t>(i) < client._topics.size(); ++i)
            if (granted[i] >= 128)
                client._listener.subscriptionRefused(client._topics[static_cast<std::size_t>(i)],
                                                     withoutStop(mosquitto_reason_string(granted[i])));
    }

    static void logged(mosquitto*, void* self, int level, const char* text) noexcept
    {
        auto& client = *static_cast<MqttClient*>(self);
        if (level == MOSQ_LOG_ERR && client._complaint.empty()) // what follows is less exact
            client._complaint = withoutStop(text);
    }
};

MqttClient::MqttClient(const MqttConnection& connection, MqttListener& listener)
    : _listener(listener), _connection(connection)
{
    static const Library library;
    _client = mosquitto_new(orNull(connection._id), true, this);
    if (!_client)
        throw std::bad_alloc();
    mosquitto_int_option(_client, MOSQ_OPT_PROTOCOL_VERSION,
                         connection._isVersion5 ? MQTT_PROTOCOL_V5 : MQTT_PROTOCOL_V311);
    // Small packets go at once: without it each end waits for the other, 40 ms for every few confirmed messages.
    mosquitto_int_option(_client, MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_connect_callback_set(_client, Callbacks::connected);
    mosquitto_disconnect_callback_set(_client, Callbacks::disconnected);
    mosquitto_publish_callback_set(_client, Callbacks::published);
    mosquitto_message_callback_set(_client, Callbacks::arrived);
    mosquitto_subscribe_callback_set(_client, Callbacks::subscribed);
    mosquitto_log_callback_set(_client, Callbacks::logged);
}

MqttClient::~MqttClient()
{
    mosquitto_destroy(_client);
}

void MqttClient::logIn(const std::string& user, const std::string& password)
{
    if (mosquitto_username_pw_set(_client, orNull(user), orNull(password)) == MOSQ_ERR_NOMEM)
        throw std::bad_alloc();
}

std::string MqttClient::begin(const std::string& host, std::uint16_t port)
{
    // The library only says that something is wrong with one of them.
    for (const std::string* file : {&_connection._caFile, &_connection._certificateFile, &_connection._keyFile})
        if (!file->empty() && ::access(file->c_str(), R_OK) != 0)
            return "the file '" + *file + "' cannot be read: " + std::strerror(errno);
    const std::string& topic = _connection._statusTopic;
    int code = MOSQ_ERR_SUCCESS;
    if (!topic.empty())
        code = mosquitto_will_set(_client, topic.c_str(), static_cast<int>(std::strlen(Offline)), Offline, 1, true);
    if (code == MOSQ_ERR_SUCCESS && _connection._isEncrypted)
        code = mosquitto_tls_set(_client, orNull(_connection._caFile),
                                 _connection._caFile.empty() ? systemCertificates : nullptr,
                                 orNull(_connection._certificateFile), orNull(_connection._keyFile), refusePassphrase);
    if (code == MOSQ_ERR_SUCCESS)
        code = mosquitto_connect_async(_client, host.c_str(), port, _connection._keepAlive);
    if (code != MOSQ_ERR_SUCCESS)
        return describe(code);
    ::fcntl(getDescriptor(), F_SETFD, FD_CLOEXEC); // no other program is to keep the connection open
    return {};
}

std::string MqttClient::work()
{
    const bool wasAccepted = _isAccepted;
    int code = MOSQ_ERR_SUCCESS;
    // The library reads one message at a time, and with encryption keeps others where no poll sees them. Until the
    // broker has taken us there is one at most.
    _hasMore = true;
    for (int i = 0; i < maxReadsAtOnce && code == MOSQ_ERR_SUCCESS && _hasMore; ++i) {
        errno = 0;
        code = mosquitto_loop_read(_client, 1);
        _hasMore = errno != EAGAIN && _isAccepted;
    }
    if (code == MOSQ_ERR_SUCCESS && wantsToWrite())
        code = mosquitto_loop_write(_client, 1);
    if (code == MOSQ_ERR_SUCCESS)
        code = mosquitto_loop_misc(_client);
    if (!_refusal.empty())
        return _refusal;
    if (code == MOSQ_ERR_SUCCESS)
        return {};
    const bool mayWantEncryption = code == MOSQ_ERR_CONN_LOST && !wasAccepted && !_connection._isEncrypted;
    return describe(code) + (mayWantEncryption ? "; where it wants encryption, tls=true helps" : "");
}

int MqttClient::getDescriptor() const
{
    return mosquitto_socket(_client);
}

bool MqttClient::wantsToWrite() const
{
    return mosquitto_want_write(_client);
}

std::string MqttClient::subscribe(const std::vector<std::string>& topics, int quality)
{
    _topics = topics;
    std::vector<char*> names;
    for (std::string& topic : _topics)
        names.push_back(topic.data());
    const int code = mosquitto_subscribe_multiple(_client, nullptr, static_cast<int>(names.size()), names.data(),
                                                  quality, 0, nullptr);
    return code == MOSQ_ERR_SUCCESS ? std::string() : describe(code);
}

std::string MqttClient::publish(const std::string& topic, std::string_view payload, int quality, bool retain)
{
    ++_unconfirmed; // first: it may be confirmed before publish returns
    const int code = mosquitto_publish(_client, nullptr, topic.c_str(), static_cast<int>(payload.size()),
                                       payload.data(), quality, retain);
    if (code == MOSQ_ERR_SUCCESS)
        return {};
    --_unconfirmed;
    return describe(code);
}

void MqttClient::farewell()
{
    if (!_isAccepted)
        return;
    if (!_connection._statusTopic.empty())
        publish(_connection._statusTopic, Offline, 0, true);
    pollfd socket{getDescriptor(), POLLOUT, 0};
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(farewellMilliseconds);
    while (wantsToWrite() && std::chrono::steady_clock::now() < end && ::poll(&socket, 1, farewellMilliseconds) > 0 &&
           mosquitto_loop_write(_client, 1) == MOSQ_ERR_SUCCESS) {
    }
    mosquitto_disconnect(_client);
}

bool MqttClient::isTopic(std::string_view text)
{
    return !text.empty() && mosquitto_pub_topic_check2(text.data(), text.size()) == MOSQ_ERR_SUCCESS &&
           mosquitto_validate_utf8(text.data(), static_cast<int>(text.size())) == MOSQ_ERR_SUCCESS;
}

std::string MqttClient::describe(int code) const
{
    const std::string problem = code == MOSQ_ERR_ERRNO ? std::strerror(errno) : withoutStop(mosquitto_strerror(code));
    const bool isUntrusted = _complaint.find("certificate verify failed") != std::string::npos;
    return problem + (_complaint.empty() ? "" : " (" + _complaint + ")") +
           (isUntrusted ? "; its certificate has to fit the host of 'broker', and to be signed by one in 'cafile', or "
                          "by one that the system trusts where 'cafile' is empty"
                        : "");
}

} // namespace Trovio::Nodes
