#include "monitor/answer/Answers.h"

#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "explain/text/NameHint.h"
#include "trovio/Exception.h"
#include "trovio/Root.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Monitor {
namespace {

using Names = std::vector<std::string_view>;

struct Row {
    std::string_view _path;
    Answer (*_answer)(const Context& context, const Question& question);
    Names _query; // names that may stand in it
};

const std::vector<Row>& table()
{
    static const std::vector<Row> rows{{"/host", answerHost, {}},
                                       {"/slots", answerSlots, {"label"}},
                                       {"/sensors", answerSensors, {}},
                                       {"/nodes", answerNodes, {}},
                                       {"/types", answerTypes, {}},
                                       {"/graph", answerGraph, {"form"}},
                                       {"/flow", answerFlow, {}},
                                       {"/why", answerWhy, {"from", "to"}},
                                       {"/delay", answerDelay, {"from", "to", "seconds"}},
                                       {"/metrics", answerMetrics, {}}};
    return rows;
}

constexpr std::string_view pubPath = "/pub/", recordingPath = "/recording", reloadPath = "/reload";

void checkMethod(const Question& question, const std::string& allowed)
{
    if (question._method != allowed)
        throw Refusal(405, Explain::inQuotes(question._path) + " takes " + allowed + ", not " +
                               Explain::inQuotes(question._method));
}

void checkQuery(const Question& question, const Names& allowed)
{
    for (const auto& [name, value] : question._query)
        if (std::ranges::find(allowed, name) == allowed.end())
            throw Refusal(400, Explain::inQuotes(question._path) + " knows nothing called " + Explain::inQuotes(name) +
                                   (allowed.empty() ? "; it takes no names behind a '?'"
                                                    : "; allowed are " + Explain::listed(allowed)));
}

Answer answerOf(const Context& context, const Question& question)
{
    if (question._path.starts_with(pubPath)) {
        checkMethod(question, "POST");
        checkQuery(question, {});
        return answerPub(context, question, question._path.substr(pubPath.size()));
    }
    if (question._path == reloadPath) {
        checkMethod(question, "POST");
        checkQuery(question, {});
        return answerReload(context, question);
    }
    if (question._path == recordingPath) {
        checkQuery(question, {});
        return answerRecording(context, question);
    }
    const auto row = std::ranges::find(table(), question._path, &Row::_path);
    if (row == table().end()) {
        Names paths;
        for (const Row& known : table())
            paths.push_back(known._path);
        paths.insert(paths.end(), {"/pub/LABEL", recordingPath, reloadPath});
        throw Refusal(404, "nothing is answered at " + Explain::inQuotes(question._path) + "; there are " +
                               Explain::listed(paths));
    }
    checkMethod(question, "GET");
    checkQuery(question, row->_query);
    return row->_answer(context, question);
}

} // namespace

Answers::Answers(SceneView scene, const TapSet& taps, std::function<std::vector<ClientCounts>()> clients)
    : _scene(std::move(scene)),
      _taps(taps),
      _clients(std::move(clients)),
      _started(Trovio::Time::getCurrentTime().getSeconds())
{
}

Answer Answers::ask(const Question& question) const
{
    try {
        return answerOf({_scene, _taps, _clients, _started}, question);
    } catch (const Refusal& refusal) {
        return errorAnswer(refusal._status, refusal.what());
    } catch (const Trovio::Exception& error) { // a pattern that is none
        return errorAnswer(400, error.getMessage());
    }
}

Answer errorAnswer(int status, const std::string& text)
{
    Answer answer = jsonAnswer({{"error", text}});
    answer._status = status;
    return answer;
}

void requireWriting(const Question& question)
{
    if (!question._mayWrite)
        throw Refusal(403,
                      "writing is not allowed here; use the Unix socket, or start the host with --monitor-write and "
                      "give its token");
}

Answer jsonAnswer(const nlohmann::ordered_json& value)
{
    return {200, "application/json", Explain::jsonText(value) + "\n"};
}

Explain::ScenePlaces placesOf(const Context& context)
{
    return context._scene._places ? context._scene._places() : Explain::ScenePlaces();
}

} // namespace Monitor
