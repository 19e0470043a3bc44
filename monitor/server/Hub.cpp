#include "monitor/server/Hub.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "explain/text/JsonText.h"
#include "monitor/answer/SlotMap.h"
#include "monitor/server/Guarded.h"
#include "monitor/server/streams/BatchStream.h"
#include "monitor/server/streams/LineStream.h"
#include "trovio/Root.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

namespace Monitor {

using Explain::inQuotes;

namespace {

constexpr std::chrono::seconds lookInterval(1); // at the slots of the tree
constexpr std::chrono::seconds idlePace(1);
constexpr const char* tooMany = "too many questions wait already; ask again later";

// The first that is offered and known; empty for none.
std::string chosenFrom(const std::vector<std::string>& offered)
{
    const auto isKnown = [](const std::string& name) {
        return name == BatchStream::Name ||
               std::ranges::find(FoxgloveStream::Names, name) != FoxgloveStream::Names.end();
    };
    const auto found = std::ranges::find_if(offered, isKnown);
    return found == offered.end() ? std::string() : *found;
}

Question questionFrom(const RequestHead& head, std::string body, bool mayWrite)
{
    Question question{head._method, head._path, head._query, std::move(body), head._accept, mayWrite, {}};
    question._query.erase("token"); // that has been seen to
    return question;
}

std::string valueOf(const Question& question, const std::string& name)
{
    const auto found = question._query.find(name);
    return found == question._query.end() ? std::string() : found->second;
}

bool isChange(const std::string& path)
{
    return path == "/reload" || path == "/route" || path.starts_with("/node/");
}

// The labels of the out-slots that are meant; empty, and what is wrong, where there are none.
std::vector<std::string> sourcesOf(const std::string& label, const SceneView& scene, std::string& problem)
{
    const SlotMap slots(Trovio::Root::get().inspect(), scene._places ? scene._places() : Explain::ScenePlaces());
    const SlotMap::Place* const place = slots.find(label, problem);
    std::vector<std::string> labels;
    if (!place)
        return labels;
    for (const SlotMap::Place* const source : slots.sourcesOf(*place))
        labels.push_back(source->_label);
    if (labels.empty())
        problem = "nothing is connected to " + inQuotes(place->_label) + ", so no records come; ask /why for the cause";
    return labels;
}

Answer answerOrFailure(const std::function<Answer()>& make)
{
    try {
        return make();
    } catch (const std::exception& error) {
        return errorAnswer(500, Explain::textOf(error));
    }
}
} // namespace

Hub::Hub(SceneView scene, WhoMay whoMay, Network network, std::vector<std::string> folders)
    : _scene(std::move(scene)),
      _whoMay(std::move(whoMay)),
      _network(std::move(network)),
      _page(std::move(folders)),
      _watches(_taps, _network._hurry),
      _foxglove{_watches,
                _channels,
                _poses,
                [this](Question question, const std::function<void(const Answer&)>& take) {
                    answerLater(std::move(question), take);
                },
                [this] { lookAtSlots(); },
                _scene._name,
                newToken()},
      _answers(_scene, _taps, [this] { return clientCounts(); })
{
}

std::optional<Answer> Hub::refusal(const RequestHead& head, Door door)
{
    if (const auto refused = _whoMay.refusal(head, door, PageFiles::isPublic(head._path)))
        return errorAnswer(403, *refused);
    if (!head._wantsWebSocket)
        return std::nullopt;
    if (head._path != "/")
        return errorAnswer(404, "no WebSocket at " + inQuotes(head._path) + "; allowed: /");
    if (chosenFrom(head._subprotocols).empty())
        return errorAnswer(400, "the WebSocket offers no subprotocol that is served here; allowed: " +
                                    std::string(FoxgloveStream::Names[0]) + ", " +
                                    std::string(FoxgloveStream::Names[1]) + ", " + BatchStream::Name);
    return std::nullopt;
}

// Whether a publication has to wait shows once its slot was looked for.
void Hub::answerLater(Question question, const Take& take)
{
    noteClients();
    if (question._path == "/delay")
        return answerOn(_delays, std::move(question), take);
    if (isChange(question._path))
        return answerOn(_changes, std::move(question), take);
    question._mayWait = false;
    answerOn(_work, std::move(question), take);
}

void Hub::answerOn(WorkThread& thread, Question question, const Take& take)
{
    question._isOver = [&thread, isGone = std::move(question._isOver)] {
        return thread.isOver() || (isGone && isGone());
    };
    const auto asked = std::make_shared<Question>(std::move(question));
    answerLater(
        thread, [this, asked] { return _answers.ask(*asked); },
        [this, asked, take](Answer made) {
            if (!made._hasToWait)
                return take(std::move(made));
            asked->_mayWait = true;
            answerOn(_changes, std::move(*asked), take);
        });
}

// What take holds has to go on the server's thread.
void Hub::answerLater(WorkThread& thread, std::function<Answer()> make, Take take)
{
    const auto work = [this, make = std::move(make), take]() mutable {
        Answer made = answerOrFailure(make);
        _network._post(
            [take = std::exchange(take, nullptr), made = std::move(made)]() mutable { take(std::move(made)); });
    };
    if (!thread.add(work))
        take(errorAnswer(503, tooMany));
}

void Hub::ask(const RequestHead& head, Door door, std::string body, std::shared_ptr<Exchange> exchange)
{
    const auto take = [exchange](Answer made) { exchange->reply(std::move(made)); };
    if (PageFiles::isOfPage(head._path) && _page.isRead())
        return take(_page.answer(head));
    if (PageFiles::isOfPage(head._path))
        return answerLater(
            _work, [this, head] { return _page.answer(head); }, take);
    Question question = questionFrom(head, std::move(body), _whoMay.mayWrite(head, door));
    if (question._path == "/stream")
        return stream(question, exchange);
    question._isOver = [gone = exchange->gone()] { return gone->load(std::memory_order_relaxed); };
    answerLater(std::move(question), take);
}

void Hub::stream(const Question& question, const std::shared_ptr<Exchange>& exchange)
{
    std::uint64_t most = 0;
    const std::string count = valueOf(question, "n"), label = valueOf(question, "label");
    const std::string form = valueOf(question, "form");
    const auto [end, error] = std::from_chars(count.data(), count.data() + count.size(), most);
    if (question._method != "GET")
        return exchange->reply(errorAnswer(405, "'/stream' takes GET, not " + inQuotes(question._method)));
    if (label.empty() || (!count.empty() && (error != std::errc() || end != count.data() + count.size() || most == 0)))
        return exchange->reply(errorAnswer(400, "/stream?label=" + label + "&n=" + count +
                                                    ": allowed: the label of a slot, and where n is given a whole "
                                                    "number of records above 0"));
    if (!form.empty() && form != "bytes")
        return exchange->reply(errorAnswer(400, "a stream has no form " + inQuotes(form) +
                                                    "; allowed is bytes, for sizes in place of values, or none"));
    const auto shows = form.empty() ? LineStream::Shows::Value : LineStream::Shows::Size;
    const auto work = [this, label, most, shows, held = exchange]() mutable {
        std::string problem;
        std::vector<std::string> labels;
        try {
            labels = sourcesOf(label, _scene, problem);
        } catch (const std::exception& failure) {
            problem = Explain::textOf(failure);
        }
        _network._post([this, labels, problem, most, shows, held = std::exchange(held, nullptr)] {
            auto made = lines(labels, most, shows);
            made ? held->replyWith(std::move(made))
                 : held->reply(errorAnswer(404, labels.empty() ? problem : TapSet::whyNot(labels.front())));
        });
    };
    if (!_work.add(work))
        exchange->reply(errorAnswer(503, tooMany));
}

std::unique_ptr<Stream> Hub::lines(const std::vector<std::string>& labels, std::uint64_t most, LineStream::Shows shows)
{
    auto made = std::make_unique<LineStream>(_watches, most, shows);
    enter(*made, "stream");
    bool any = false;
    for (const std::string& label : labels)
        any = made->watch(label) || any;
    return any ? std::move(made) : nullptr;
}

std::unique_ptr<Stream> Hub::openSocket(const RequestHead& head, Door door, std::string& subprotocol)
{
    subprotocol = chosenFrom(head._subprotocols);
    std::unique_ptr<Stream> made;
    if (subprotocol == BatchStream::Name)
        made = std::make_unique<BatchStream>(_watches);
    else
        made = std::make_unique<FoxgloveStream>(_foxglove, _whoMay.mayWrite(head, door));
    enter(*made, subprotocol);
    return made;
}

void Hub::enter(Stream& stream, const std::string& kind)
{
    _streams[&stream] = std::to_string(++_clientsSoFar) + " " + kind;
    stream.whenGone([this, &stream] { _streams.erase(&stream); });
}

// Where the tree is large, that takes a while.
void Hub::lookAtSlots()
{
    if (_isLooking)
        return;
    _lastLook = _network._now();
    _isLooking = _work.add([this] {
        std::optional<Channels::Slots> slots;
        guarded("looking at the slots", [&slots] { slots = Channels::look(); });
        _network._post([this, slots = std::move(slots)]() mutable { useSlots(std::move(slots)); });
    });
}

// Whoever serves channels hears of it, also of what somebody else's look has found.
void Hub::useSlots(std::optional<Channels::Slots> slots)
{
    _isLooking = false;
    if (!slots)
        return;
    const bool areOthers = _channels.update(std::move(*slots));
    if (areOthers)
        _poses.setSlots(_channels.poseLabels());
    for (const auto& [stream, name] : _streams)
        stream->slotsSeen(areOthers);
}

std::chrono::milliseconds Hub::pace() const
{
    return _watches.empty() ? idlePace : _watches.pace();
}

void Hub::tick()
{
    if (!_watches.empty())
        _watches.round();
    const auto offersSlots = [](const auto& entry) { return entry.first->offersSlots(); };
    if (_network._now() - _lastLook >= lookInterval && std::ranges::any_of(_streams, offersSlots))
        lookAtSlots();
}

void Hub::noteClients()
{
    std::vector<ClientCounts> counts;
    for (const auto& [stream, name] : _streams)
        counts.push_back({name, stream->queue().sentRecords(), stream->queue().dropped()});
    const Ostrel::LockGuard guard(_countsLock);
    _counts = std::move(counts);
}

std::vector<ClientCounts> Hub::clientCounts() const
{
    const Ostrel::LockGuard guard(_countsLock);
    return _counts;
}

void Hub::endAnswers()
{
    _delays.end();
    _changes.end();
    _work.end();
}
} // namespace Monitor
