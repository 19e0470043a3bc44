#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "monitor/Recorder.h"
#include "monitor/answer/Context.h"

#include <nlohmann/json.hpp>

namespace Monitor {
namespace {

using Explain::inQuotes;
using nlohmann::json;

constexpr const char* bodyText = R"({"file": "/recordings/a.mcap", "slots": "*/position", "memory": 256000000})";

Answer answerStatus(const RecorderStatus& status)
{
    nlohmann::ordered_json object{{"recording", status._isRecording},
                                  {"file", status._path},
                                  {"slots", status._slots},
                                  {"records", status._records},
                                  {"notKept", status._notKept},
                                  {"leftOut", status._leftOut},
                                  {"bytes", status._size}};
    object["secondsLeft"] = status._secondsLeft < 0 ? json() : json(status._secondsLeft);
    object["problem"] = status._problem;
    object["text"] = status.line();
    return jsonAnswer(object);
}

// No more than a name for a new file, at a place that does not depend on where the program stands.
void checkFile(const std::string& path)
{
    if (!path.starts_with('/') || !path.ends_with(".mcap"))
        throw Refusal(400, "\"file\" is " + inQuotes(path) + "; allowed are whole paths, from '/' to '.mcap'");
}

RecordingOrder orderFrom(const std::string& body)
{
    const json read = json::parse(body, nullptr, false);
    RecordingOrder order;
    if (!read.is_object() || !read.contains("file") || !read["file"].is_string())
        throw Refusal(400, std::string("the body is no JSON object with \"file\", such as ") + bodyText);
    for (const auto& [name, value] : read.items()) {
        if (name == "file" && value.is_string())
            order.path = value;
        else if (name == "slots" && value.is_string())
            order.slots = value;
        else if (name == "memory" && value.is_number_unsigned() && value > 0)
            order.memory = value;
        else
            throw Refusal(400,
                          inQuotes(name) + " is unknown, or its value is of the wrong kind; allowed is " + bodyText);
    }
    checkFile(order.path);
    return order;
}

Answer start(Recorder& recorder, const std::string& body)
{
    const RecordingOrder order = orderFrom(body);
    if (const RecorderStatus now = recorder.status(); now._isRecording)
        throw Refusal(409, "a recording is made already, into " + inQuotes(now._path) + "; end that one first");
    try {
        recorder.start(order);
    } catch (const std::runtime_error& error) {
        throw Refusal(400, error.what());
    }
    return answerStatus(recorder.status());
}
} // namespace

Answer answerRecording(const Context& context, const Question& question)
{
    Recorder* const recorder = context._scene._recorder;
    if (!recorder)
        throw Refusal(404, "this program has no recorder; its author gives the server one");
    if (question._method == "GET")
        return answerStatus(recorder->status());
    requireWriting(question);
    if (question._method == "POST")
        return start(*recorder, question._body);
    if (!recorder->status()._isRecording)
        throw Refusal(409, "nothing is being recorded");
    return answerStatus(recorder->stop());
}

} // namespace Monitor
