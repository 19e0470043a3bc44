#include "nodes/dds/DdsClocks.h"

#include "nodes/dds/DdsTaking.h"

namespace Trovio::Nodes {

namespace {

constexpr std::size_t mostQuestions = 256; // that wait for an answer
constexpr std::size_t mostClocks = 1024;   // that are known
constexpr int hurriedQuestions = 8;        // soon after one another, so that the first estimate is good
constexpr double hurriedPeriod = 0.1;      // seconds
constexpr double calmPeriod = 2.0;         // seconds

} // namespace

void DdsClocks::open(const DdsEnds& ends)
{
    const std::string what = "cannot compare clocks";
    _wake = ends._wake;
    const DdsQos qos = makeProbeQos();
    const DdsListener questions(dds_create_listener(this)), answers(dds_create_listener(this));
    dds_lset_data_available(questions.get(), onQuestion);
    dds_lset_data_available(answers.get(), onAnswer);
    const auto topic = [&](const char* name) {
        return DdsEntity(dds_create_topic(ends._participant, &Trovio_Wire_ClockProbe_desc, name, qos.get(), nullptr),
                         what);
    };
    _questionTopic = topic("ostrel_clock_question");
    _answerTopic = topic("ostrel_clock_answer");
    if (_roles._asks) {
        _answerReader =
            DdsEntity(dds_create_reader(ends._subscriber, _answerTopic.get(), qos.get(), answers.get()), what);
        _questionWriter = DdsEntity(dds_create_writer(ends._publisher, _questionTopic.get(), qos.get(), nullptr), what);
    }
    if (_roles._answers) {
        _answerWriter = DdsEntity(dds_create_writer(ends._publisher, _answerTopic.get(), qos.get(), nullptr), what);
        _questionReader =
            DdsEntity(dds_create_reader(ends._subscriber, _questionTopic.get(), qos.get(), questions.get()), what);
    }
    _nextAsking = 0.0;
    _asked = 0;
}

void DdsClocks::close()
{
    for (DdsEntity* entity : {&_questionReader, &_answerReader, &_questionWriter, &_answerWriter})
        *entity = DdsEntity();
    const Ostrel::LockGuard guard(_lock);
    _questions.clear();
    _offsets.clear();
}

std::optional<double> DdsClocks::work()
{
    while (auto probe = nextQuestion()) {
        probe->answerer = _id;
        probe->answered = _clock.wallTime().getSeconds();
        dds_write(_answerWriter.get(), &*probe);
    }
    if (!_roles._asks)
        return std::nullopt;
    if (const double now = _clock.now(); now >= _nextAsking) {
        const Trovio_Wire_ClockProbe question{_id, 0, _clock.wallTime().getSeconds(), 0.0, 0.0};
        dds_write(_questionWriter.get(), &question);
        _nextAsking = now + (++_asked < hurriedQuestions ? hurriedPeriod : calmPeriod);
    }
    return _nextAsking;
}

std::optional<ClockOffset::Estimate> DdsClocks::getOffset(std::uint64_t writer, double now) const
{
    const Ostrel::LockGuard guard(_lock);
    const auto found = _offsets.find(writer);
    return found == _offsets.end() ? std::nullopt : found->second.estimate(now);
}

void DdsClocks::onQuestion(dds_entity_t reader, void* clocks) noexcept
{
    auto& self = *static_cast<DdsClocks*>(clocks);
    const double arrived = self._clock.wallTime().getSeconds();
    takeSamples(reader, [&](const void* sample, const dds_sample_info_t&) {
        self.takeQuestion(*static_cast<const Trovio_Wire_ClockProbe*>(sample), arrived);
    });
}

void DdsClocks::onAnswer(dds_entity_t reader, void* clocks) noexcept
{
    auto& self = *static_cast<DdsClocks*>(clocks);
    const double arrived = self._clock.wallTime().getSeconds();
    takeSamples(reader, [&](const void* sample, const dds_sample_info_t&) {
        self.takeAnswer(*static_cast<const Trovio_Wire_ClockProbe*>(sample), arrived);
    });
}

void DdsClocks::takeQuestion(const Trovio_Wire_ClockProbe& probe, double arrived)
{
    {
        const Ostrel::LockGuard guard(_lock);
        if (probe.asker == _id || _questions.size() == mostQuestions)
            return;
        _questions.push_back(probe);
        _questions.back().received = arrived;
    }
    _wake();
}

void DdsClocks::takeAnswer(const Trovio_Wire_ClockProbe& probe, double arrived)
{
    const Ostrel::LockGuard guard(_lock);
    if (probe.asker != _id || (_offsets.size() == mostClocks && !_offsets.contains(probe.answerer)))
        return;
    _offsets[probe.answerer].note(probe.asked, probe.received, probe.answered, arrived);
}

std::optional<Trovio_Wire_ClockProbe> DdsClocks::nextQuestion()
{
    const Ostrel::LockGuard guard(_lock);
    if (_questions.empty())
        return std::nullopt;
    const Trovio_Wire_ClockProbe probe = _questions.front();
    _questions.pop_front();
    return probe;
}

} // namespace Trovio::Nodes
