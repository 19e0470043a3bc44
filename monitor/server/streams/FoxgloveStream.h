#pragma once

#include "monitor/answer/Question.h"
#include "monitor/server/streams/Channels.h"
#include "monitor/server/streams/FoxgloveMessage.h"
#include "monitor/server/streams/PoseFeed.h"

#include <array>
#include <nlohmann/json_fwd.hpp>

namespace Monitor {

/// One client of the Foxglove WebSocket protocol: each out-slot is a channel, its records are messages in CDR, and so
/// are the poses that they make. Where the client may write, it may publish, too. Threads: the server's.
class FoxgloveStream final : public Stream, private PoseViewer {
public:
    static constexpr std::array<std::string_view, 2> Names = {"foxglove.websocket.v1", "foxglove.sdk.v1"};

    /// What it needs of the server, which outlives it.
    struct Around {
        Watches& _watches;
        const Channels& _channels;
        PoseFeed& _poses;
        /// Answers on the server's thread, later.
        std::function<void(Question, std::function<void(const Answer&)>)> _ask;
        std::function<void()> _lookAtSlots; // says what it has seen later
        std::string _name;                  // of the program
        std::string _session;               // another one for each run
    };

    FoxgloveStream(const Around& around, bool mayWrite) : _around(around), _mayWrite(mayWrite) {}
    ~FoxgloveStream() override;

    void opened() override;
    void received(std::string_view message, bool isBinary) override;
    void take(const SeenRecord& seen) override;
    void endRound() override;
    bool offersSlots() const override { return true; }
    void slotsSeen(bool areOthers) override;
    void drained() override;

private:
    struct Subscription {
        std::uint32_t _channel;
        std::string _label;
        bool _isPoses;
    };
    struct Publication {
        std::string _label;
        const SlotCodec* _codec; // null for JSON
    };

    void handle(const Foxglove::Subscribe& message);
    void handle(const Foxglove::Unsubscribe& message);
    void handle(const Foxglove::Advertise& message);
    void handle(const Foxglove::Unadvertise& message);
    void handle(const Foxglove::Publish& message);
    void handle(const Foxglove::Wrong& message);

    void takePoses(const TapRecord& poses) override;
    void missPoses(std::uint64_t records) override { queue().drop(records); }
    void hearWhyNone(const std::string& text) override { status(Warning, text); }

    void advertiseSome();
    std::string problemOf(const Foxglove::Subscription& entry) const;
    bool watch(std::uint32_t number, const Subscription& subscription);
    void end(std::uint32_t subscription);
    void sendRecord(std::uint32_t subscription, const TapRecord& record);
    void publish(const Publication& publication, std::string_view payload);
    void tellFailure(const Answer& answer);
    void tellDropped();
    enum Level { Info = 0, Warning = 1, Error = 2 };
    void status(Level level, const std::string& text, const char* number = nullptr);
    void say(const nlohmann::ordered_json& object);

    const Around& _around;
    const bool _mayWrite;
    bool _isOpen = false, _hasOffered = false;
    std::uint32_t _advertised = 0;                              // the last channel that was offered
    std::map<std::uint32_t, std::string> _offered;              // labels by channel
    std::map<std::uint32_t, Subscription> _subscriptions;       // by the client's numbers
    std::map<std::string, std::uint32_t, std::less<>> _byLabel; // of the subscriptions, that to poses, too
    std::map<std::uint32_t, Publication> _publications;         // by the client's numbers
    std::uint64_t _told = 0;                                    // of the dropped records
    unsigned _roundsSinceTold = 0;
    const std::shared_ptr<FoxgloveStream*> _self =
        std::make_shared<FoxgloveStream*>(this); // for answers that come late
};
} // namespace Monitor
