#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct mosquitto;
struct mosquitto_message;

namespace Trovio::Nodes {

/// How a broker is spoken to. Paths are those of PEM files; empty ones are left out.
struct MqttConnection {
    bool _isVersion5 = false;
    std::string _id;     // empty: the library makes one
    int _keepAlive = 20; // seconds
    bool _isEncrypted = false;
    std::string _caFile, _certificateFile, _keyFile;
    std::string _statusTopic; // where the will is published; empty without one
};

/// Takes what a client hears. On the thread of the client, inside its work(); must not call the client.
class MqttListener {
public:
    virtual void messageArrived(std::string_view topic, std::string_view payload, bool isRetained) noexcept = 0;
    /// The broker has the message.
    virtual void messageSent() noexcept = 0;
    /// The broker does not let us hear that topic.
    virtual void subscriptionRefused(const std::string& topic, const std::string& reason) noexcept = 0;

protected:
    ~MqttListener() = default;
};

/// One connection to a broker, which is not made again: a new client is, for the next one. Nothing here waits, but for
/// farewell() and, where begin() is given a name, the name server.
/// Ownership: the listener outlives it.
/// Threads:   one.
class MqttClient {
public:
    static constexpr const char* Online = "online";
    static constexpr const char* Offline = "offline";

    MqttClient(const MqttConnection& connection, MqttListener& listener);
    ~MqttClient();
    MqttClient(const MqttClient&) = delete;
    MqttClient& operator=(const MqttClient&) = delete;

    /// Throws std::bad_alloc. An empty name is no name.
    void logIn(const std::string& user, const std::string& password);

    /// Begins to connect. Returns the problem, or an empty text.
    std::string begin(const std::string& host, std::uint16_t port);

    /// Reads and writes as far as it goes, and keeps the connection alive: to be called when the socket is ready, and
    /// every second. Returns the problem that has ended the connection, or an empty text.
    std::string work();

    /// The last work() stopped before all was read.
    bool hasMore() const { return _hasMore; }

    /// The broker has taken us.
    bool isAccepted() const { return _isAccepted; }
    /// The socket, or -1.
    int getDescriptor() const;
    bool wantsToWrite() const;
    /// Messages whose messageSent() is to come.
    unsigned getUnconfirmed() const { return _unconfirmed; }

    /// Asks for these topics. Returns the problem, or an empty text.
    std::string subscribe(const std::vector<std::string>& topics, int quality);
    std::string publish(const std::string& topic, std::string_view payload, int quality, bool retain);

    /// Says goodbye to a broker that has taken us, with the status; waits a fifth of a second at most.
    void farewell();

    /// Whether a topic can be published and subscribed to: UTF-8 without wildcards.
    static bool isTopic(std::string_view text);

private:
    struct Callbacks; // for the library
    std::string describe(int code) const;

    MqttListener& _listener;
    const MqttConnection _connection;
    mosquitto* _client = nullptr;
    std::vector<std::string> _topics; // that were asked for
    bool _isAccepted = false, _hasMore = false;
    unsigned _unconfirmed = 0;
    std::string _refusal;   // of the broker
    std::string _complaint; // the first error in the library's log
};

} // namespace Trovio::Nodes
