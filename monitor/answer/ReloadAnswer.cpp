#include "monitor/answer/Context.h"

#include <nlohmann/json.hpp>

namespace Monitor {
namespace {

int statusOf(ChangeRefused::Why why)
{
    switch (why) {
    case ChangeRefused::Why::IsBad:
        return 400;
    case ChangeRefused::Why::IsNotThere:
        return 404;
    case ChangeRefused::Why::CannotBeNow:
        return 409;
    }
    return 500; // not reached
}
} // namespace

Answer changeAnswer(const Question& question, const std::function<std::vector<std::string>()>& change)
{
    requireWriting(question);
    if (!change)
        throw Refusal(404, "this program does not let its scene be changed; its author gives the server what does it");
    try {
        return jsonAnswer({{"done", change()}});
    } catch (const ChangeRefused& refused) {
        throw Refusal(statusOf(refused._why), refused.what());
    }
}

Answer answerReload(const Context& context, const Question& question)
{
    return changeAnswer(question, context._scene._sceneChanges._reload);
}

} // namespace Monitor
