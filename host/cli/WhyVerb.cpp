#include "host/cli/Verbs.h"

#include "explain/ExplanationJson.h"
#include "explain/Why.h"
#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "explain/text/JsonText.h"
#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/output/RunLog.h"
#include "host/run/StoppableClock.h"
#include "host/run/WatchedRun.h"
#include "scene/run/Backlog.h"
#include "scene/run/FrameLoop.h"
#include "scene/run/SceneCause.h"
#include "trovio/Namespace.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

using Trovio::Explanation;
using Trovio::Verdict;

// Seconds from poll to poll, each of which walks through the whole tree.
constexpr double minInterval = 0.001, maxInterval = 0.05;

constexpr double maxWaitForFrames = 10; // seconds

struct Answer {
    Explanation _explanation;
    bool _decided = false, _interrupted = false;
    std::string _fits;
};

// Asks again and again, until there is an answer, the time is over, or a signal comes.
Answer findAnswer(Session& session, double rate, const Options& options, const StopSignal& stop)
{
    StoppableClock clock(stop);
    // Whether records are read in time shows after some frames. A cause that lasts for all the time given is an answer,
    // too.
    const double frames = std::min(2 / rate, maxWaitForFrames);
    const double patience = std::min(std::max(options._patience, frames), options._seconds / 2);
    const double pollInterval = std::clamp(patience / 2, minInterval, maxInterval);
    const double pollsPerFrame = std::ceil(1 / (pollInterval * rate));
    FrameLoop loop(clock, rate * pollsPerFrame, {options._seconds, options._frames});
    Answer answer;
    WhyDecision decision(patience);
    Backlog backlog;
    const auto poll = [&] {
        const Explanation found = explainLabels(options._from, options._to, options._staleAfter);
        answer._decided = decision.take(found, clock.steady());
    };
    double nextPoll = 0, nextFrame = 0;
    loop.run([&](double now) {
        if (clock.steady() >= nextFrame) {
            backlog.update(session);
            session.frame(now);
            nextFrame = clock.steady() + (pollsPerFrame - 0.5) / (rate * pollsPerFrame);
        }
        if (clock.steady() < nextPoll)
            return true;
        nextPoll = clock.steady() + pollInterval;
        poll();
        return !answer._decided;
    });
    if (nextPoll == 0) // a signal came first
        poll();
    answer._interrupted = stop.requested();
    answer._explanation = inSceneWords(decision.answer(), session, {options._from, options._to});
    if (answer._explanation._verdict == Verdict::Flowing)
        answer._explanation._text += backlog.cure(session, options._to);
    answer._fits =
        answer._explanation._verdict == Verdict::TypesDiffer
            ? whatFits(answer._explanation, [&](const std::string& label) { return isSensor(session, label); })
            : missingRoute(answer._explanation, session);
    return answer;
}

int exitCode(const Answer& answer)
{
    if (!answer._decided)
        return NoAnswer;
    const Verdict verdict = answer._explanation._verdict;
    return verdict == Verdict::Flowing ? Done : verdict == Verdict::TypesDiffer ? TypeMismatch : NothingFound;
}

void printText(const Answer& answer)
{
    std::string text = answer._explanation._text;
    if (!answer._decided)
        text = std::string(answer._interrupted ? "interrupted" : "no answer in the time given") + "; so far: " + text;
    if (!answer._fits.empty())
        text += (text.ends_with('?') ? " " : "; ") + answer._fits;
    std::printf("%s\n", escaped(text, 4000).c_str());
}

void printJson(const Answer& answer, const Options& options)
{
    nlohmann::ordered_json object{{"from", options._from}, {"to", options._to}, {"decided", answer._decided}};
    object.update(explanationJson(answer._explanation));
    if (!answer._fits.empty())
        object["fits"] = answer._fits;
    std::printf("%s\n", jsonText(object).c_str());
}

// The answer is given before the nodes stop, which may take for ever, and waits for its reader.
int answerWhy(std::vector<SceneFile> files, const Options& options, const WatchedRun& around)
{
    RunLog log(false);
    log.hold(true);
    const double rate = files.front()._host._rate._value;
    Session session;
    if (!session.build(
            std::move(files), [](const std::string&) {}, [&around] { return around._stop.requested(); })) {
        around._output.say("no answer: ended before the scene was built");
        return NoAnswer;
    }
    const Answer answer = findAnswer(session, rate, options, around._stop);
    log.discard(); // what it said of the cause stands in the answer
    options._format == Format::Json ? printJson(answer, options) : printText(answer);
    std::fflush(stdout);
    around._watch.begin();
    return exitCode(answer);
}

// "SCENE FROM TO", "FROM TO" or nothing. A word too few is said, and false.
bool readWords(Options& options)
{
    std::vector<std::string>& words = options._names;
    if (words.size() == 1 || (words.size() == 2 && std::filesystem::is_regular_file(words.front()))) {
        std::fprintf(
            stderr,
            "%s is missing: why SCENE FROM TO runs a scene, why FROM TO asks a running host, and why alone asks it for "
            "all that does not flow\n",
            words.size() == 1 && std::filesystem::is_regular_file(words.front()) ? "FROM" : "TO");
        return false;
    }
    if (!words.empty()) {
        options._from = words[words.size() - 2];
        options._to = words.back();
        words.resize(words.size() - 2);
    }
    return true;
}
} // namespace

int whyVerb(const Options& asked)
{
    Options options = asked;
    if (!readWords(options))
        return BadUsage;
    if (const auto failure = failureOf([&] { Trovio::Namespace().explain(options._from, options._to); });
        failure && !options._from.empty()) {
        std::fprintf(stderr, "%s\n", escaped(*failure, 4000).c_str());
        return BadUsage;
    }
    if (options._names.empty())
        return askWhy(options);
    auto files = readScenes(options);
    if (!files)
        return BadUsage;
    options._host = hostOfScenes(*files);
    if (!options._host.empty()) {
        std::fprintf(stderr, "asked host %s, which runs %s\n", options._host.c_str(),
                     files->size() == 1 ? "this scene" : "these scenes");
        return askWhy(options);
    }
    return runWatched(std::move(*files), droppedAsText,
                      [&options](std::vector<SceneFile> scenes, const WatchedRun& around) {
                          return answerWhy(std::move(scenes), options, around);
                      });
}
} // namespace Host
