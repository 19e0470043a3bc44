// First line: a slot type. Below: a message, or a value in JSON. What can be read either way is shown as JSON, becomes
// a message again, and is shown the same once more; what cannot says why in words that can be shown.
#include "fuzz/Fuzz.h"
#include "monitor/codec/ClientJson.h"
#include "monitor/codec/SlotCodec.h"

namespace Fuzz {

namespace {

using Monitor::Bytes;
using Monitor::SlotCodec;

void tryJson(const SlotCodec& codec, std::string_view text)
{
    Bytes message;
    std::string shown, again, problem;
    const auto json = Monitor::readJson(text);
    if (!json)
        return;
    if (!codec.fromJson(*json, message, problem)) {
        require(isPrintable(problem), "what is wrong with JSON can be shown");
        return;
    }
    require(codec.toJson(message, shown, problem), "a value that was read from JSON can be shown");
    Bytes same;
    require(codec.fromJson(nlohmann::json::parse(shown), same, problem), "a value that is shown can be read");
    require(same.size() == message.size(), "a value that is shown and read stays as long as it is");
    require(codec.toJson(same, again, problem) && again == shown, "a value that is shown and read stays as it is");
}

void tryMessage(const SlotCodec& codec, std::span<const std::byte> message)
{
    std::string shown, problem;
    const bool isRead = codec.toJson(message, shown, problem);
    require(codec.makeSource("")->write(message, {}, problem) == isRead, "a message that is shown can be pushed");
    require(isRead || isPrintable(problem), "what is wrong with a message can be shown");
    if (isRead && !codec.slotType().starts_with("Image"))
        tryJson(codec, shown);
}

} // namespace

void runOnce(std::string_view input)
{
    const SlotCodec* const codec = SlotCodec::find(takeLine(input));
    if (!codec)
        return;
    tryMessage(*codec, std::as_bytes(std::span(input.data(), input.size())));
    tryJson(*codec, input);
}

} // namespace Fuzz
