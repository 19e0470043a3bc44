#include "monitor/server/streams/FoxgloveMessage.h"

#include "explain/text/Escape.h"
#include "monitor/codec/ClientJson.h"

namespace Monitor::Foxglove {

using Json = nlohmann::json;

namespace {

constexpr std::size_t maxFaults = 16; // that are told of one message

std::optional<std::uint32_t> numberAt(const Json& object, const char* key)
{
    const auto found = object.is_object() ? object.find(key) : object.end();
    return found == object.end() ? std::nullopt : numberIn(*found);
}

std::optional<Subscription> readSubscription(const Json& entry)
{
    const auto number = numberAt(entry, "id"), channel = numberAt(entry, "channelId");
    return number && channel ? std::optional(Subscription{*number, *channel}) : std::nullopt;
}

std::optional<Publication> readPublication(const Json& entry)
{
    const auto number = numberAt(entry, "id");
    const auto topic = number ? textAt(entry, "topic") : std::nullopt;
    const auto encoding = number ? textAt(entry, "encoding") : std::nullopt;
    if (!topic || !encoding)
        return std::nullopt;
    return Publication{*number, *topic, *encoding, textAt(entry, "schemaName").value_or("")};
}

std::string wrongEntry(const Json& entry, const std::string& allowed)
{
    return "'" + Explain::escaped(entry.dump(-1, ' ', true, Json::error_handler_t::replace)) +
           "' is no entry; allowed: " + allowed;
}

// What stands in the list under that key, as far as it can be read.
template <class List>
Message readList(const Json& object, const char* key, const std::string& allowed,
                 std::optional<typename List::Entry> (*readEntry)(const Json&))
{
    const Json* const entries = listAt(object, key);
    if (!entries)
        return Wrong{"a message without a list called '" + std::string(key) + "'; each entry of it is " + allowed};
    List list;
    for (const Json& json : *entries)
        if (const auto entry = readEntry(json))
            list._entries.push_back(*entry);
        else if (list._faults.size() < maxFaults)
            list._faults.push_back(wrongEntry(json, allowed));
    return list;
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
    const std::string number = "a whole number of 32 bits";
    if (op == "subscribe")
        return readList<Subscribe>(*object, "subscriptions", "{\"id\":…,\"channelId\":…} with whole numbers of 32 bits",
                                   readSubscription);
    if (op == "unsubscribe")
        return readList<Unsubscribe>(*object, "subscriptionIds", number, numberIn);
    if (op == "advertise")
        return readList<Advertise>(
            *object, "channels", "{\"id\":…,\"topic\":\"…\",\"encoding\":\"…\",\"schemaName\":\"…\"}", readPublication);
    if (op == "unadvertise")
        return readList<Unadvertise>(*object, "channelIds", number, numberIn);
    return Wrong{"the op " + Explain::inQuotes(op) +
                 " is not served here; allowed: subscribe, unsubscribe, and where writing is allowed advertise and "
                 "unadvertise"};
}
} // namespace Monitor::Foxglove
