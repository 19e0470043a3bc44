#include "monitor/Recorder.h"

#include "explain/text/Escape.h"
#include "monitor/record/RecorderWork.h"

#include <cstdio>
#include <stdexcept>

namespace Monitor {

class Recorder::State {
public:
    explicit State(RecorderOptions&& options) : _options(std::move(options)) {}

    void start(const RecordingOrder& order) OSTREL_EXCLUDES(_lock)
    {
        const auto texts = _options.texts ? _options.texts() : RecorderOptions::Pairs();
        const Ostrel::LockGuard guard(_lock);
        if (_work)
            throw std::runtime_error("a recording is made already, into " +
                                     Explain::inQuotes(_handover.status()._path) + "; end that one first");
        _work = std::make_unique<RecorderWork>(_options, texts, order, _handover);
        say("recording to " + Explain::inQuotes(order.path));
    }

    RecorderStatus stop() OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        const bool ends = std::exchange(_work, nullptr) != nullptr;
        const RecorderStatus status = _handover.status();
        if (ends && status._problem.empty())
            say("recorded to " + Explain::inQuotes(status._path) + ": " + status.line());
        return status;
    }

    Handover& handover() { return _handover; }

private:
    void say(const std::string& line) const
    {
        if (_options.say)
            _options.say(line);
    }

    const RecorderOptions _options;
    Handover _handover;
    // Unranked, and before the tree's: slots are tapped under it. Only who starts or stops takes it.
    Ostrel::Mutex _lock;
    std::unique_ptr<RecorderWork> _work OSTREL_GUARDED_BY(_lock);
};

Recorder::Recorder(RecorderOptions options) : _state(std::make_unique<State>(std::move(options))) {}

Recorder::~Recorder()
{
    stop();
}

void Recorder::start(const RecordingOrder& order)
{
    _state->start(order);
}

RecorderStatus Recorder::stop()
{
    return _state->stop();
}

RecorderStatus Recorder::status() const
{
    return _state->handover().status();
}

void Recorder::frame(std::uint64_t number, double time)
{
    _state->handover().add({number, time});
}

std::string RecorderStatus::line() const
{
    char text[160];
    std::snprintf(text, sizeof text, "slots %zu, records %llu, %.1f MiB, not kept %llu", _slots,
                  static_cast<unsigned long long>(_records), static_cast<double>(_size) / 1'048'576,
                  static_cast<unsigned long long>(_notKept));
    std::string line = text;
    if (_leftOut > 0)
        line += ", slots left out " + std::to_string(_leftOut);
    if (_secondsLeft >= 0 && _problem.empty() && _isRecording) {
        std::snprintf(text, sizeof text, ", room for %.0f min", _secondsLeft / 60);
        line += text;
    }
    return line;
}
} // namespace Monitor
