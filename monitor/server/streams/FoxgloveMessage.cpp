#include "monitor/server/streams/FoxgloveMessage.h"

#include "explain/text/Escape.h"
#include "monitor/codec/ClientJson.h"

namespace Monitor::Foxglove {

using Json = nlohmann::json;

namespace {

std::optional<std::uint32_t> numberAt(const Json& object, const char* key)
{
    const auto found = object.is_object() ? object.find(key) : object.end();
    return found == object.end() ? std::nullopt : numberIn(*found);
}

Message wrongEntry(const Json& entry, const char* allowed)
{
    return Wrong{"'" + Explain::escaped(entry.dump(-1, ' ', true, Json::error_handler_t::replace)) +
                 "' is no entry; allowed: " + allowed};
}

Message readSubscribe(const Json& list)
{
    Subscribe message;
    for (const Json& entry : list) {
        const auto number = numberAt(entry, "id"), channel = numberAt(entry, "channelId");
        if (!number || !channel)
            return wrongEntry(entry, "{\"id\":…,\"channelId\":…} with whole numbers of 32 bits");
        message._entries.push_back({*number, *channel});
    }
    return message;
}

Message readAdvertise(const Json& list)
{
    Advertise message;
    for (const Json& entry : list) {
        const auto number = numberAt(entry, "id");
        const auto topic = number ? textAt(entry, "topic") : std::nullopt;
        const auto encoding = number ? textAt(entry, "encoding") : std::nullopt;
        if (!topic || !encoding)
            return wrongEntry(entry, "{\"id\":…,\"topic\":\"…\",\"encoding\":\"…\",\"schemaName\":\"…\"}");
        message._entries.push_back({*number, *topic, *encoding, textAt(entry, "schemaName").value_or("")});
    }
    return message;
}

template <class Numbers>
Message readNumbers(const Json& list)
{
    Numbers message;
    for (const Json& entry : list) {
        const auto number = numberIn(entry);
        if (!number)
            return wrongEntry(entry, "a whole number of 32 bits");
        message._numbers.push_back(*number);
    }
    return message;
}

Message readBinary(std::string_view bytes)
{
    if (bytes.size() < 5 || bytes[0] != 1)
        return Wrong{"a binary message of " + std::to_string(bytes.size()) + " bytes" +
                     (bytes.empty() ? "" : " with opcode " + std::to_string(static_cast<unsigned char>(bytes[0]))) +
                     "; allowed: opcode 1, a channel of 4 bytes, and the message"};
    std::uint32_t number = 0;
    for (std::size_t i = 4; i > 0; --i)
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    return Publish{number, bytes.substr(5)};
}
} // namespace

Message read(std::string_view bytes, bool isBinary)
{
    if (isBinary)
        return readBinary(bytes);
    const auto object = readObject(bytes);
    if (!object)
        return Wrong{"a text that is no JSON object"};
    const std::string op = textAt(*object, "op").value_or("");
    if (op == "subscribe")
        return readSubscribe(listAt(*object, "subscriptions"));
    if (op == "unsubscribe")
        return readNumbers<Unsubscribe>(listAt(*object, "subscriptionIds"));
    if (op == "advertise")
        return readAdvertise(listAt(*object, "channels"));
    if (op == "unadvertise")
        return readNumbers<Unadvertise>(listAt(*object, "channelIds"));
    return Wrong{"the op " + Explain::inQuotes(op) +
                 " is not served here; allowed: subscribe, unsubscribe, and where writing is allowed advertise and "
                 "unadvertise"};
}
} // namespace Monitor::Foxglove
