#include "nodes/mqtt/MqttSettings.h"

#include "nodes/text/TextSlots.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxTopic = 255;
constexpr std::size_t maxName = 255; // of a user or a client
constexpr const char* topicList = "'topic Type, ...' with slot types, or nothing; behind a topic may stand # and the "
                                  "place in a JSON payload, as in house/room#/temperature";

std::string_view topicOf(std::string_view entry)
{
    return entry.substr(0, entry.find('#'));
}

std::string pointerOf(std::string_view entry)
{
    return std::string(entry.substr(topicOf(entry).size() + (topicOf(entry).size() < entry.size() ? 1 : 0)));
}

bool isTopic(std::string_view text)
{
    const auto isPlain = [](char character) {
        return (static_cast<unsigned char>(character) > ' ') && character != '\x7f' && character != '*';
    };
    return text.size() <= maxTopic && std::ranges::all_of(text, isPlain) && MqttClient::isTopic(text);
}

bool isEntry(std::string_view entry)
{
    const bool hasPointer = entry.find('#') != entry.npos;
    return isTopic(topicOf(entry)) && entry.size() <= 2 * maxTopic && (!hasPointer || isJsonPointer(pointerOf(entry)));
}

std::vector<MqttTopic> readTopics(const Settings& settings, const char* setting)
{
    const auto entries = readTextSlots(settings, setting,
                                       {isEntry, "a topic",
                                        "up to " + std::to_string(maxTopic) +
                                            " characters without blanks and +*, alone or with # and a JSON pointer"});
    std::vector<MqttTopic> topics;
    std::vector<std::string> labels;
    for (const auto& [name, typeName] : entries) {
        const std::string topic(topicOf(name)), pointer = pointerOf(name);
        topics.push_back({topic, pointer, {topic + pointer, typeName}});
        if (std::ranges::find(labels, topics.back()._slot._name) != labels.end())
            throw settings.refusal(setting, "each label once; duplicate label '" + topics.back()._slot._name + "'");
        labels.push_back(topics.back()._slot._name);
    }
    return topics;
}

std::vector<ListedSlot> slotsOf(const std::vector<MqttTopic>& topics)
{
    std::vector<ListedSlot> slots;
    slots.reserve(topics.size());
    for (const MqttTopic& topic : topics)
        slots.push_back(topic._slot);
    return slots;
}

/// A name as the protocol sends it.
std::string readName(const Settings& settings, const char* setting)
{
    const std::string& name = settings.text(setting);
    const bool isPlain = std::ranges::all_of(
        name, [](char character) { return static_cast<unsigned char>(character) >= ' ' && character != '\x7f'; });
    if (name.size() > maxName || !isPlain)
        throw settings.refusal(setting, "up to " + std::to_string(maxName) + " bytes without control characters");
    return name;
}

MqttConnection readConnection(const Settings& settings)
{
    MqttConnection connection;
    connection._isVersion5 = settings.text("version") == "5";
    connection._id = readName(settings, "id");
    connection._keepAlive = static_cast<int>(settings.integer("keepalive"));
    connection._isEncrypted = settings.flag("tls");
    connection._caFile = settings.file("cafile");
    connection._certificateFile = settings.file("certfile");
    connection._keyFile = settings.file("keyfile");
    connection._statusTopic = settings.text("status");
    if (!connection._statusTopic.empty() && !isTopic(connection._statusTopic))
        throw settings.refusal("status", "a topic without wildcards, or nothing");
    for (const char* file : {"cafile", "certfile", "keyfile"})
        if (!connection._isEncrypted && !settings.file(file).empty())
            throw settings.refusal(file, "nothing, unless tls=true");
    if (connection._certificateFile.empty() != connection._keyFile.empty())
        throw settings.refusal(connection._keyFile.empty() ? "keyfile" : "certfile",
                               "a file: 'certfile' and 'keyfile' belong together");
    return connection;
}

} // namespace

std::span<const Setting> mqttSettingRows()
{
    static const Setting rows[] = {
        Setting::endpoint("broker", "127.0.0.1:1883", "the broker, HOST:PORT; with TLS the port is 8883 as a rule"),
        Setting::choice("version", "3.1.1", "3.1.1|5", "version of the protocol"),
        Setting::text("id", "", "name of this client, each at most once at a broker; made up where it is empty"),
        Setting::text("user", "", "name to log in with"),
        Setting::file("passwordfile", "", "file whose first line is the password; not open to every user"),
        Setting::boolean("tls", "false", "whether the connection is encrypted, and the broker has to prove its name"),
        Setting::file("cafile", "", "certificates to trust, as PEM; those of the system where it is empty"),
        Setting::file("certfile", "", "own certificate, as PEM, for brokers that ask for one"),
        Setting::file("keyfile", "", "key of that certificate, as PEM, without a passphrase"),
        Setting::text("in", "", "what to receive; each entry is an out-slot", topicList),
        Setting::text("out", "", "what to send; each entry is an in-slot", topicList),
        Setting::integer("qos", "0", 0, 2, "quality of service: at most once, at least once, exactly once"),
        Setting::boolean("retain", "false", "whether the broker keeps the last of what is sent, for who comes later"),
        Setting::choice("retained", "take", "take|skip", "what to do with messages that the broker had kept"),
        Setting::text("status", "", "topic that says 'online', and 'offline' when this node is gone",
                      "topic, or nothing"),
        Setting::choice("vectors", "array", "array|object",
                        "how vectors are sent: [1,2,3] or {\"x\":1,\"y\":2,\"z\":3}"),
        Setting::choice("switches", "bool", "bool|number|onoff", "how Bool is sent: true, 1 or ON"),
        Setting::integer("keepalive", "20", 5, 3600,
                         "seconds of silence after which the other end is asked for a sign"),
        Setting::integer("queue", "256", 1, 65536, "records that may wait in each in-slot; the newest are kept"),
    };
    return rows;
}

MqttSettings readMqttSettings(const Settings& settings)
{
    MqttSettings wanted;
    wanted._connection = readConnection(settings);
    wanted._user = readName(settings, "user");
    wanted._passwordFile = settings.file("passwordfile");
    wanted._in = readTopics(settings, "in");
    wanted._out = readTopics(settings, "out");
    wanted._quality = static_cast<int>(settings.integer("qos"));
    wanted._retain = settings.flag("retain");
    wanted._takesRetained = settings.text("retained") == "take";
    wanted._form = {static_cast<PayloadForm::Vectors>(settings.choice("vectors")),
                    static_cast<PayloadForm::Switches>(settings.choice("switches"))};
    wanted._queue = static_cast<unsigned>(settings.integer("queue"));
    const auto& broker = settings.endpoint("broker");
    if (!broker || broker->_port == 0)
        throw settings.refusal("broker", "a host and a port from 1 to 65535");
    wanted._broker = *broker;
    if (wanted._in.empty() && wanted._out.empty())
        throw settings.refusal("in", "a value, unless 'out' has one");
    if (wanted._user.empty() && !wanted._passwordFile.empty())
        throw settings.refusal("user", "a name, since there is a 'passwordfile'");
    checkApart(settings, slotsOf(wanted._in), slotsOf(wanted._out));
    checkQueues(settings, "queue", wanted._out.size());
    return wanted;
}

} // namespace Trovio::Nodes
