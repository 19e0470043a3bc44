#include "nodes/dds/DdsSettings.h"

#include "nodes/dds/net/HostNames.h"
#include "nodes/shared/NumberList.h"
#include "nodes/shared/SocketAddress.h"
#include <algorithm>
#include <net/if.h>
#include <set>

namespace Trovio::Nodes {

namespace {

constexpr int maxDepth = 65536;
constexpr std::size_t maxHosts = 256;
constexpr std::size_t maxNameLength = 200;
constexpr std::size_t maxHostLength = 253;
constexpr std::size_t maxPartitionLength = 200;
constexpr std::string_view nameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.:-";

const Setting rows[] = {
    Setting::text("publish", "", "what to send: 'Topic Type, ...'; each topic is an in-slot"),
    Setting::text("subscribe", "",
                  "what to receive: 'Topic Type, ...'; each topic is an out-slot, and Topic/alive too"),
    Setting::integer("domain", "0", 0, 230, "number of the domain; only nodes of the same domain see each other"),
    Setting::text("interface", "", "network interface; lo, for this machine only, unless 'host' is given"),
    Setting::text("host", "", "names or addresses of peers, for networks without multicast, separated by blanks"),
    Setting::text("partition", "", "name of a part of the domain; only nodes of the same partition see each other"),
    Setting::integer("depth", "64", 1, maxDepth, "records of a topic that may wait to be sent, the newest"),
    Setting::choice("reliable", "yes", "yes|no", "whether what is lost on the line is sent again"),
    Setting::choice("finite", "yes", "yes|no", "whether samples with infinite numbers or not-a-number are refused"),
    Setting::choice("ros2", "no", "yes|no", "whether topics are those of ROS 2 systems, with their messages"),
    Setting::choice("timing", "yes", "yes|no",
                    "whether clocks are compared, and Topic/timing tells how old values are; no with ros2=yes"),
    Setting::number("lease", "3", 0.5, 60, "seconds of silence after which a peer counts as gone"),
    Setting::integer("processes", "32", 1, 119,
                     "programs of a machine that may take part; without multicast each is looked for"),
    Setting::integer("largest", "67108864", 1024, 1 << 30, "bytes of a sample; larger ones are neither sent nor taken"),
};

bool isTopicName(std::string_view name)
{
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    constexpr std::string_view others = "0123456789/";
    return !name.empty() && name.size() <= maxNameLength && letters.find(name.front()) != std::string_view::npos &&
           name.find_first_not_of(std::string(letters) + std::string(others)) == std::string_view::npos;
}

/// A topic is called what its slot is called, on every machine.
std::vector<ListedSlot> readTopics(const Settings& settings, const char* setting)
{
    return readSlotList(
        settings, setting,
        {isTopicName, "a topic",
         "a letter or _, and up to " + std::to_string(maxNameLength - 1) + " more letters, digits, _ and /"});
}

/// Whether ROS 2 can have a topic of that name, which must be a topic's name here.
bool isRosTopicName(std::string_view name)
{
    constexpr std::string_view digits = "0123456789/";
    for (std::size_t slash = 0; slash != std::string_view::npos; slash = name.find('/', slash + 1)) {
        const std::size_t first = slash == 0 ? 0 : slash + 1;
        if (first == name.size() || digits.find(name[first]) != std::string_view::npos)
            return false;
    }
    return name.find("__") == std::string_view::npos;
}

bool isPlainName(const std::string& text, std::size_t longest)
{
    return text.size() <= longest && text.find_first_not_of(nameCharacters) == std::string::npos;
}

bool isHostName(const std::string& text)
{
    return isPlainName(text, maxHostLength) && text.find_first_of("_:") == std::string::npos && text.front() != '-';
}

std::vector<std::string> readHosts(const Settings& settings)
{
    std::vector<std::string> hosts, addresses;
    for (const std::string_view word : splitWords(settings.text("host"))) {
        const std::string& host = hosts.emplace_back(word);
        const bool isAddress = SocketAddress::parse(host, 0).has_value();
        if (isAddress)
            addresses.push_back(host);
        if ((!isAddress && !isHostName(host)) || hosts.size() > maxHosts)
            throw settings.refusal("host", "up to " + std::to_string(maxHosts) +
                                               " names or addresses separated by blanks, such as tracker.local or "
                                               "192.168.0.2");
    }
    if (const std::string problem = findMixture(addresses); !problem.empty())
        throw settings.refusal("host", "no hosts with " + problem);
    return hosts;
}

DdsDomainSettings readDomain(const Settings& settings)
{
    DdsDomainSettings domain;
    domain._number = static_cast<unsigned>(settings.integer("domain"));
    domain._hosts = readHosts(settings);
    domain._interface = settings.text("interface");
    if (domain._interface.empty() && domain._hosts.empty())
        domain._interface = "lo";
    if (!isPlainName(domain._interface, IFNAMSIZ - 1))
        throw settings.refusal("interface", "the name of a network interface, such as lo or eth0");
    domain._lease = settings.number("lease");
    domain._processes = static_cast<unsigned>(settings.integer("processes"));
    domain._largest = static_cast<unsigned>(settings.integer("largest"));
    return domain;
}

/// What ROS 2 has no name or no message for, it cannot read.
void checkForRos(const Settings& settings, const char* setting, const std::vector<ListedSlot>& topics)
{
    for (const ListedSlot& topic : topics) {
        if (!findTopicType(topic._typeName, {true}))
            throw settings.refusal(setting, "with ros2=yes, for " + topic._name +
                                                " one of the types that have a message: " + listRosTypes());
        if (!isRosTopicName(topic._name))
            throw settings.refusal(setting, "with ros2=yes, names whose parts between / begin with a letter or one _, "
                                            "but not " +
                                                topic._name);
    }
}

/// Labels are of one kind: what is published, what is subscribed to, and what says who is there.
void checkApart(const Settings& settings, const DdsSettings& read)
{
    std::set<std::string> labels;
    for (const ListedSlot& topic : read._subscribed) {
        labels.insert(topic._name);
        labels.insert(topic._name + "/alive");
        labels.insert(topic._name + "/timing");
    }
    if (labels.size() < 3 * read._subscribed.size())
        throw settings.refusal("subscribe",
                               "no topic that is called like another one with /alive or /timing behind it");
    for (const ListedSlot& topic : read._published)
        if (labels.contains(topic._name))
            throw settings.refusal("publish", "topics that are no label of 'subscribe', but both have " + topic._name +
                                                  "; use two nodes for that");
}

} // namespace

std::span<const Setting> ddsSettingRows()
{
    return rows;
}

DdsSettings readDdsSettings(const Settings& settings)
{
    DdsSettings read;
    read._domain = readDomain(settings);
    read._quality._partition = settings.text("partition");
    read._quality._depth = static_cast<int>(settings.integer("depth"));
    read._quality._reliable = settings.choice("reliable") == 0;
    read._quality._lease = read._domain._lease;
    read._format = {settings.choice("ros2") == 0, settings.choice("finite") == 0};
    read._quality._lateJoiners = !read._format._isRos;
    read._timing = settings.choice("timing") == 0 && (!read._format._isRos || settings.isGiven("timing"));
    read._published = readTopics(settings, "publish");
    read._subscribed = readTopics(settings, "subscribe");
    if (read._published.empty() && read._subscribed.empty())
        throw settings.refusal("publish", "a value, unless 'subscribe' has one");
    if (!isPlainName(read._quality._partition, maxPartitionLength))
        throw settings.refusal("partition", "up to " + std::to_string(maxPartitionLength) + " of the characters " +
                                                std::string(nameCharacters));
    const std::size_t slots = read._published.size() + read._subscribed.size();
    checkQueues(settings, "depth", slots);
    // A sample is pushed into slots as it arrives, and waits in the reader only while another thread is pushing one
    // before it. The depth bounds how many wait, and none is lost below it.
    read._quality._readerDepth = static_cast<int>(std::min<std::size_t>(maxDepth, shareOfWaiting(slots)));
    checkApart(settings, read);
    if (!read._format._isRos)
        return read;
    checkForRos(settings, "publish", read._published);
    checkForRos(settings, "subscribe", read._subscribed);
    if (read._timing)
        throw settings.refusal("timing", "no, with ros2=yes: there is nobody to ask for the time");
    return read;
}

} // namespace Trovio::Nodes
