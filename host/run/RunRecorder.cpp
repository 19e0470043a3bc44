#include "host/run/RunRecorder.h"

#include "explain/text/Escape.h"
#include "host/show/Terminal.h"

#include <filesystem>
#include <unistd.h>

namespace Host {

namespace {

constexpr double statusEvery = 10; // seconds

/// The scenes' files as they were read last, which need not be how they stand on the disk now.
Monitor::RecorderOptions::Pairs textsOf(const Scenes::Session& session)
{
    Monitor::RecorderOptions::Pairs texts;
    for (const auto& file : session.files()._loaded)
        texts.emplace_back(std::filesystem::path(file->_path).filename().string(), file->_text);
    return texts;
}

Monitor::RecorderOptions recorderOptions(const Scenes::Session& session, const Explain::Say& say)
{
    Monitor::RecorderOptions recorder;
    recorder.program = std::string("ostrel-host ") + HOST_VERSION;
    char name[256] = {};
    gethostname(name, sizeof name - 1);
    recorder.facts = {{"machine", name}, {"version", HOST_VERSION}};
    recorder.texts = [&session] { return textsOf(session); };
    recorder.say = say;
    return recorder;
}
} // namespace

RunRecorder::RunRecorder(const Options& options, bool tellsStatus, const Scenes::Session& session,
                         const Explain::Say& say)
    : _say(say),
      _isAskedFor(!options._record.empty()),
      _tellsStatus(tellsStatus && hasCursor(STDERR_FILENO)),
      _recorder(recorderOptions(session, say))
{
    if (_isAskedFor)
        _recorder.start({options._record, options._slots, static_cast<std::size_t>(options._memory * 1e6)});
}

std::string RunRecorder::refusal(const Options& options)
{
    std::error_code ignored;
    if (options._record.empty() || !std::filesystem::exists(options._record, ignored))
        return {};
    return "recording " + Explain::inQuotes(options._record) +
           " exists; recordings are not written over: name another file or remove it";
}

void RunRecorder::endFrame(std::uint64_t number, double now)
{
    _recorder.frame(number, now);
    if (!_tellsStatus || now < _nextStatus)
        return;
    _nextStatus = now + statusEvery;
    const Monitor::RecorderStatus status = _recorder.status();
    if (status._isRecording && status._records > 0)
        _say("recording to " + Explain::inQuotes(status._path) + ": " + status.line());
}

bool RunRecorder::finish()
{
    const Monitor::RecorderStatus status = _recorder.stop();
    return !_isAskedFor || status._problem.empty();
}
} // namespace Host
