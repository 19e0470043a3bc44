#include "nodes/dds/clocks/DdsClocks.h"

#include "nodes/dds/net/DdsSamples.h"
#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxQuestions = 200;  // that are answered in a second, and that wait for it
constexpr unsigned maxAskers = 10'000;     // that are believed
constexpr double periodOfEndpoint = 0.005; // seconds; with multicast, 200 questions a second in a domain
constexpr double periodOfPair = 0.0004;    // seconds; each goes to each: 2,500 packets a second in a domain

unsigned countReaders(const DdsEntity& writer)
{
    dds_publication_matched_status_t status{};
    dds_get_publication_matched_status(writer.get(), &status);
    return status.current_count;
}

} // namespace

void DdsClocks::open(const DdsParticipant& participant)
{
    if (!_roles._asks && !_roles._answers)
        return;
    const std::string what = "cannot compare clocks";
    _wake = participant._wake;
    _multicast = participant._domain->getSettings().isMulticast();
    const DdsQos qos = makeProbeQos();
    const DdsListener questions(dds_create_listener(this)), answers(dds_create_listener(this));
    dds_lset_data_available(questions.get(), onQuestion);
    dds_lset_data_available(answers.get(), onAnswer);
    dds_lset_subscription_matched(answers.get(), onAnswererChange);
    const auto topic = [&](const char* name) {
        return DdsEntity(dds_create_topic(participant._entity, &Trovio_Wire_ClockProbe_desc, name, qos.get(), nullptr),
                         what);
    };
    _questionTopic = topic("ostrel_clock_question");
    _answerTopic = topic("ostrel_clock_answer");
    if (_roles._asks) {
        _answerReader =
            DdsEntity(dds_create_reader(participant._subscriber, _answerTopic.get(), qos.get(), answers.get()), what);
        _questionWriter =
            DdsEntity(dds_create_writer(participant._publisher, _questionTopic.get(), qos.get(), nullptr), what);
    }
    if (_roles._answers) {
        _answerWriter =
            DdsEntity(dds_create_writer(participant._publisher, _answerTopic.get(), qos.get(), nullptr), what);
        _questionReader = DdsEntity(
            dds_create_reader(participant._subscriber, _questionTopic.get(), qos.get(), questions.get()), what);
    }
}

void DdsClocks::close()
{
    for (DdsEntity* entity :
         {&_questionReader, &_answerReader, &_questionWriter, &_answerWriter, &_questionTopic, &_answerTopic})
        *entity = DdsEntity();
    const Ostrel::LockGuard guard(_lock);
    _questions.clear();
    _peers.forgetSenders(); // peers have other handles once this is open again
}

std::optional<double> DdsClocks::work()
{
    while (auto probe = nextQuestion()) {
        probe->askers = countReaders(_answerWriter);
        probe->answered = date();
        dds_write(_answerWriter.get(), &*probe);
    }
    return _roles._asks ? ask() : std::nullopt;
}

std::optional<double> DdsClocks::ask()
{
    const double now = _clock.now();
    if (now < _earliestAsking)
        return _earliestAsking;
    _earliestAsking = now + minPeriod();
    Probe question{_id, 0, 0, date(), 0.0, 0.0};
    std::optional<double> next;
    bool isAsked = false;
    {
        const Ostrel::LockGuard guard(_lock);
        const auto peer = _peers.ask(now, question.asked);
        isAsked = peer.has_value();
        question.answerer = peer.value_or(0);
        next = _peers.nextAsking();
    }
    if (isAsked)
        dds_write(_questionWriter.get(), &question);
    return next ? std::optional(std::max(*next, _earliestAsking)) : std::nullopt;
}

/// Seconds from one question to the next. Those that ask, and those that answer, are no more than the larger number
/// says.
double DdsClocks::minPeriod() const
{
    const double answerers = countReaders(_questionWriter);
    const Ostrel::LockGuard guard(_lock);
    const double endpoints = std::max(answerers, _askers);
    return _multicast ? periodOfEndpoint * endpoints : periodOfPair * endpoints * endpoints;
}

void DdsClocks::want(std::uint64_t writer)
{
    bool isNew = false;
    {
        const Ostrel::LockGuard guard(_lock);
        isNew = _peers.want(writer);
    }
    if (isNew)
        _wake();
}

PeerClocks::Knowledge DdsClocks::getKnowledge(std::uint64_t writer, double now) const
{
    const Ostrel::LockGuard guard(_lock);
    return _peers.getKnowledge(writer, now);
}

// The clock is read for each sample: an earlier reading would be before its arrival.
void DdsClocks::onQuestion(dds_entity_t reader, void* clocks) noexcept
{
    auto& self = *static_cast<DdsClocks*>(clocks);
    takeSamples(reader, [&](const void* sample, const dds_sample_info_t&) {
        self.takeQuestion(*static_cast<const Probe*>(sample), self.date());
    });
}

void DdsClocks::onAnswer(dds_entity_t reader, void* clocks) noexcept
{
    auto& self = *static_cast<DdsClocks*>(clocks);
    takeSamples(reader, [&](const void* sample, const dds_sample_info_t& info) {
        self.takeAnswer(*static_cast<const Probe*>(sample), info.publication_handle, self.date());
    });
}

void DdsClocks::onAnswererChange(dds_entity_t, dds_subscription_matched_status_t status, void* clocks) noexcept
{
    auto& self = *static_cast<DdsClocks*>(clocks);
    const Ostrel::LockGuard guard(self._lock);
    if (status.current_count_change < 0)
        self._peers.forgetSender(status.last_publication_handle);
}

void DdsClocks::takeQuestion(const Probe& probe, double arrived)
try {
    {
        const Ostrel::LockGuard guard(_lock);
        if (const double second = std::floor(_clock.now()); second != std::exchange(_second, second))
            _taken = 0;
        if (probe.answerer != _id || std::max(_questions.size(), _taken) >= maxQuestions)
            return;
        ++_taken;
        _questions.push_back(probe);
        _questions.back().received = arrived;
    }
    _wake();
} catch (const std::bad_alloc&) {
    // The library calls this and can take no exception. Whoever asked will ask again.
}

void DdsClocks::takeAnswer(const Probe& probe, std::uint64_t sender, double arrived)
{
    const Ostrel::LockGuard guard(_lock);
    if (probe.asker == _id &&
        _peers.note({probe.answerer, sender, probe.asked, probe.received, probe.answered, arrived}))
        _askers = std::min(probe.askers, maxAskers);
}

std::optional<DdsClocks::Probe> DdsClocks::nextQuestion()
{
    const Ostrel::LockGuard guard(_lock);
    if (_questions.empty())
        return std::nullopt;
    const Probe probe = _questions.front();
    _questions.pop_front();
    return probe;
}

} // namespace Trovio::Nodes
