#pragma once

#include "nodes/mqtt/MqttDispatcher.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/NameLookup.h"
#include "nodes/shared/WorkerNode.h"
#include "nodes/text/Fact.h"
#include "nodes/text/ReadyWatch.h"

namespace Trovio::Nodes {

/// What became of records that were to be sent; shown by the node.
struct MqttOutCounters {
    Counter& _messages; // that the broker has, those of the status with them
    Counter& _failed;   // records that no message can carry, and messages that the broker did not confirm
};

/// Topics of an MQTT broker: an in-slot for each that is sent, an out-slot for each that is received.
/// Its slots stay while the broker is away; then the node is degraded, and connects again when the broker is there.
/// Ownership: owns its slots; routes refer to them only while the node stands in a namespace.
/// Threads:   one thread connects, receives, pushes and sends.
class MqttNode final : public WorkerNode, private MqttListener {
public:
    explicit MqttNode(Clock& clock, std::unique_ptr<NameLookup> lookup = NameLookup::system());
    ~MqttNode() override;

    static const NodeTypeEntry& getEntry();

    /// For each out-slot that nothing reached, or not all: what came instead.
    std::vector<RemarkInfo> getRemarks() const override;

private:
    struct Sender {
        MqttTopic _topic;
        std::unique_ptr<TextSender> _sender;
    };

    void configure(const Settings& settings) override;
    void start() override;
    void stop() override;

    void run() override;
    /// Looks up, connects, receives and sends as far as it goes without waiting; when to do so again at the latest.
    double goOn();
    void lookUp();
    void connect(const std::string& host);
    void work();
    void accepted();
    void lose(const std::string& problem);
    void send();
    bool sendOne(const Sender& sender);
    bool maySend() const;

    void messageArrived(std::string_view topic, std::string_view payload, bool isRetained) noexcept override;
    void messageSent() noexcept override { _outCounters._messages.add(); }
    void subscriptionRefused(const std::string& topic, const std::string& reason) noexcept override;

    MqttInCounters _inCounters;
    MqttOutCounters _outCounters;
    MemoryShortage _shortage;
    RateLimiter _failureReports;

    // Unchanged while the node runs.
    MqttSettings _settings;
    std::string _broker; // as text
    std::unique_ptr<MqttDispatcher> _dispatcher;
    std::vector<std::unique_ptr<Sender>> _senders;

    // Of the node's thread.
    const std::unique_ptr<NameLookup> _lookup;
    enum class Step { Away, Asked, Connecting, Connected } _step = Step::Away; // Asked: for the broker's address
    double _due = 0.0; // when to try again, or when connecting has taken too long
    std::unique_ptr<MqttClient> _client;
    ReadyWatch _ready;    // for the client
    std::string _refused; // subscriptions
    TextRecord _record;

    Fact _fact; // of the broker
};

} // namespace Trovio::Nodes
