#pragma once

#include "monitor/SceneView.h"
#include "monitor/answer/Question.h"
#include "monitor/tap/TapSet.h"

#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <vector>

namespace Monitor {

/// What became of the records for one client of the server, since it came.
struct ClientCounts {
    std::string _client; // how messages name it
    std::uint64_t _sent = 0, _dropped = 0;
};

/// What answers are made from.
struct Context {
    const SceneView& _scene;
    const TapSet& _taps;
    const std::function<std::vector<ClientCounts>()>& _clients; // may be empty
    double _started;                                            // seconds since 1970
};

/// Ends an answer with that status, as in HTTP. The text says what, where, the value, what is allowed, and the cure.
class Refusal : public std::runtime_error {
public:
    Refusal(int status, const std::string& text) : std::runtime_error(text), _status(status) {}
    const int _status;
};

/// What stands behind "/pub/" and the like.
std::string labelIn(const Question& question);

/// Throws where the client may only read.
void requireWriting(const Question& question);

Answer jsonAnswer(const nlohmann::ordered_json& value);

/// Copies of what scene files say, of the whole tree, and both in one; the tree is locked while it is copied.
Explain::ScenePlaces placesOf(const Context& context);

// The answers; each throws Refusal and Trovio::Exception.
Answer answerHost(const Context& context, const Question& question);
Answer answerSlots(const Context& context, const Question& question);
Answer answerSensors(const Context& context, const Question& question);
Answer answerNodes(const Context& context, const Question& question);
Answer answerTypes(const Context& context, const Question& question);
Answer answerGraph(const Context& context, const Question& question);
Answer answerFlow(const Context& context, const Question& question);
Answer answerWhy(const Context& context, const Question& question);
Answer answerDelay(const Context& context, const Question& question);
Answer answerMetrics(const Context& context, const Question& question);
Answer answerRecording(const Context& context, const Question& question);
Answer answerReload(const Context& context, const Question& question);
Answer answerRoute(const Context& context, const Question& question);
Answer answerChanges(const Context& context, const Question& question);
Answer answerPub(const Context& context, const Question& question);
Answer answerNode(const Context& context, const Question& question);
/// The field of the sensor at that out-slot gets the value.
Answer answerGiven(const Context& context, const std::string& label, const std::string& json);

/// Remembers that a value was written into that in-slot, where the program wants to know.
void noteGiven(const Context& context, const std::string& label, const std::string& json);

} // namespace Monitor
