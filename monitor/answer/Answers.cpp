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
    std::string_view _path; // one that ends with a slash has a label behind it
    Answer (*_answer)(const Context& context, const Question& question);
    Names _query{}; // names that may stand in it
    Names _methods{"GET"};
};

const std::vector<Row>& table()
{
    static const std::vector<Row> rows{{"/host", answerHost},
                                       {"/slots", answerSlots, {"label"}},
                                       {"/sensors", answerSensors},
                                       {"/nodes", answerNodes},
                                       {"/types", answerTypes},
                                       {"/graph", answerGraph, {"form"}},
                                       {"/flow", answerFlow},
                                       {"/why", answerWhy, {"from", "to"}},
                                       {"/delay", answerDelay, {"from", "to", "seconds"}},
                                       {"/metrics", answerMetrics},
                                       {"/changes", answerChanges},
                                       {"/pub/", answerPub, {}, {"POST"}},
                                       {"/reload", answerReload, {}, {"POST"}},
                                       {"/node/", answerNode, {}, {"PUT"}},
                                       {"/route", answerRoute, {"from", "to", "conversion"}, {"PUT", "DELETE"}},
                                       {"/recording", answerRecording, {}, {"GET", "POST", "DELETE"}}};
    return rows;
}

// "GET, POST and DELETE"
std::string inWords(const Names& names)
{
    const std::string last(names.back());
    return names.size() == 1 ? last : Explain::listed(std::span(names).first(names.size() - 1)) + " and " + last;
}

void checkMethod(const Question& question, const Names& allowed)
{
    if (std::ranges::find(allowed, question._method) == allowed.end())
        throw Refusal(405, Explain::inQuotes(question._path) + " takes " + inWords(allowed) + ", not " +
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

bool isMeant(const Row& row, const std::string& path)
{
    return row._path.ends_with('/') ? path.starts_with(row._path) : path == row._path;
}

Answer answerOf(const Context& context, const Question& question)
{
    const auto row =
        std::ranges::find_if(table(), [&question](const Row& known) { return isMeant(known, question._path); });
    if (row == table().end()) {
        std::string paths;
        for (const Row& known : table())
            paths.append(paths.empty() ? "" : ", ")
                .append(known._path)
                .append(known._path.ends_with('/') ? "LABEL" : "");
        throw Refusal(404, "nothing is answered at " + Explain::inQuotes(question._path) + "; there are " + paths);
    }
    checkMethod(question, row->_methods);
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

std::string labelIn(const Question& question)
{
    return question._path.substr(question._path.find('/', 1) + 1);
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
