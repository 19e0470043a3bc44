#pragma once

#include "monitor/SceneView.h"
#include "monitor/answer/Answers.h"
#include "monitor/server/Service.h"
#include "monitor/server/WorkThread.h"
#include "monitor/server/doors/WhoMay.h"
#include "monitor/server/page/PageFiles.h"
#include "monitor/server/page/PageFolder.h"
#include "monitor/server/streams/FoxgloveStream.h"
#include "monitor/server/streams/LineStream.h"

#include <chrono>

namespace Monitor {

/// What the server does, without a network: judges, answers, and serves streams from the taps.
/// Ownership: owns taps and answers; outlives the streams that it made.
/// Threads:   the server's, but for what says otherwise.
class Hub final : public Service {
public:
    /// What it needs of the network.
    struct Network {
        std::function<void(std::function<void()>)> _post; // does something on the server's thread; any thread
        std::function<void()> _hurry;                     // pace() may be a faster one from now on
        std::function<std::chrono::steady_clock::time_point()> _now;
    };

    Hub(SceneView scene, WhoMay whoMay, Network network, std::vector<std::string> folders = pageFolders());

    std::optional<Answer> refusal(const RequestHead& head, Door door) override;
    void ask(const RequestHead& head, Door door, std::string body, std::shared_ptr<Exchange> exchange) override;
    std::unique_ptr<Stream> openSocket(const RequestHead& head, Door door, std::string& subprotocol) override;
    void tick() override;
    std::chrono::milliseconds pace() const override;

    /// No answer comes any more. Once the server's thread has ended.
    void endAnswers();

private:
    using Take = std::function<void(Answer)>;

    void answerLater(Question question, const Take& take);
    void answerLater(WorkThread& thread, std::function<Answer()> make, Take take);
    void answerOn(WorkThread& thread, Question question, const Take& take);
    void stream(const Question& question, const std::shared_ptr<Exchange>& exchange);
    std::unique_ptr<Stream> lines(const std::vector<std::string>& labels, std::uint64_t most, LineStream::Shows shows);
    void enter(Stream& stream, const std::string& kind);
    void lookAtSlots();
    void useSlots(std::optional<Channels::Slots> slots);
    void noteClients() OSTREL_EXCLUDES(_countsLock);
    std::vector<ClientCounts> clientCounts() const OSTREL_EXCLUDES(_countsLock);

    const SceneView _scene;
    const WhoMay _whoMay;
    const Network _network;
    const PageFiles _page;
    TapSet _taps;
    Channels _channels;
    Watches _watches;
    PoseFeed _poses{_watches};
    const FoxgloveStream::Around _foxglove;

    std::map<Stream*, std::string> _streams; // with what to call the client
    std::uint64_t _clientsSoFar = 0;
    std::chrono::steady_clock::time_point _lastLook; // at the slots
    bool _isLooking = false;

    mutable Ostrel::Mutex _countsLock{Ostrel::LockRank::Leaf};
    std::vector<ClientCounts> _counts OSTREL_GUARDED_BY(_countsLock); // for answers, as of the last question

    const Answers _answers;
    WorkThread _delays{"monitor-delays"};   // what waits for seconds holds up nobody else
    WorkThread _changes{"monitor-changes"}; // what waits for frames, files and nodes neither
    WorkThread _work{"monitor-answers"};
};
} // namespace Monitor
