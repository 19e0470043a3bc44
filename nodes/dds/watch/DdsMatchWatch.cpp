#include "nodes/dds/watch/DdsMatchWatch.h"

#include "nodes/dds/net/DdsSamples.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxMismatches = 64; // that are remembered; peers can make any number
constexpr std::size_t maxTextLength = 80; // characters of a peer's words in a message

void onNews(dds_entity_t, void* participant) noexcept
{
    static_cast<const DdsParticipant*>(participant)->_peersChanged();
}

bool isReliable(const dds_qos_t* qos)
{
    dds_reliability_kind_t kind = DDS_RELIABILITY_BEST_EFFORT;
    dds_qget_reliability(qos, &kind, nullptr);
    return kind == DDS_RELIABILITY_RELIABLE;
}

bool keepsLast(const dds_qos_t* qos)
{
    dds_durability_kind_t kind = DDS_DURABILITY_VOLATILE;
    dds_qget_durability(qos, &kind);
    return kind != DDS_DURABILITY_VOLATILE;
}

std::string property(const dds_qos_t* qos, const char* name)
{
    char* value = nullptr;
    const std::string text = dds_qget_prop(qos, name, &value) && value ? value : "";
    dds_free(value);
    return text.substr(0, maxTextLength);
}

} // namespace

DdsMatchWatch::DdsMatchWatch(const DdsQuality& quality, const DdsFormat& format,
                             const std::vector<ListedSlot>& published, const std::vector<ListedSlot>& subscribed)
    : _quality(quality),
      _format(format),
      _otherWriters("publishes", quality._partition),
      _otherReaders("subscribes to", quality._partition)
{
    for (const ListedSlot& topic : published)
        _published[format.nameOf(topic._name)] = {topic._name, findTopicType(topic._typeName, format)->m_typename};
    for (const ListedSlot& topic : subscribed)
        _subscribed[format.nameOf(topic._name)] = {topic._name, findTopicType(topic._typeName, format)->m_typename};
}

DdsMatchWatch::~DdsMatchWatch() = default;

void DdsMatchWatch::open(const DdsParticipant& participant)
{
    dds_get_instance_handle(participant._entity, &_own);
    const DdsListener listener(dds_create_listener(const_cast<DdsParticipant*>(&participant)));
    dds_lset_data_available(listener.get(), onNews);
    const auto openReader = [&](dds_entity_t topic) {
        return DdsEntity(dds_create_reader(participant._entity, topic, nullptr, listener.get()),
                         "cannot look for other programs");
    };
    _participants = openReader(DDS_BUILTIN_TOPIC_DCPSPARTICIPANT);
    _writers = openReader(DDS_BUILTIN_TOPIC_DCPSPUBLICATION);
    _readers = openReader(DDS_BUILTIN_TOPIC_DCPSSUBSCRIPTION);
}

void DdsMatchWatch::close()
{
    _participants = DdsEntity();
    _writers = DdsEntity();
    _readers = DdsEntity();
    _found.clear();
    _otherWriters.clear();
    _otherReaders.clear();
}

void DdsMatchWatch::update()
{
    updateFrom(_writers.get(), _subscribed, true);
    updateFrom(_readers.get(), _published, false);
    // Participants that are alive stay, to be described; the library would keep the others, too.
    takeSamples<Take::Gone>(_participants.get(), [](const void*, const dds_sample_info_t&) {});
}

void DdsMatchWatch::tell(DdsTopicProblems& problems) const
{
    std::map<std::string, std::vector<std::string>> textsOf; // by topic
    for (const auto& [endpoint, mismatch] : _found)
        textsOf[mismatch._topic].push_back(mismatch._problem);
    for (const auto& [topic, texts] : textsOf) {
        const std::string others = texts.size() > 1 ? ", and " + std::to_string(texts.size() - 1) + " more" : "";
        problems.add(topic, "topic ", ": " + texts.front() + others);
    }
}

std::string DdsMatchWatch::explainMissing(const std::string& topic) const
{
    const auto describe = [this](dds_instance_handle_t participant) { return describePeer(participant); };
    const std::string meant = _otherWriters.findMeant(_format.nameOf(topic), describe);
    if (!meant.empty())
        return "; " + meant;
    const std::size_t others = countOthers();
    const std::string seen = _otherWriters.list();
    const std::string elsewhere = "interface=NAME, host=ADDRESS or domain=NUMBER chooses another place, which is not "
                                  "seen from here";
    if (others == 0)
        return "; no other program is seen there; " + elsewhere;
    const std::string count = (others < maxLoan ? "" : "at least ") + std::to_string(others);
    return "; of " + count + (others == 1 ? " other node" : " other nodes") + " there " +
           (seen.empty() ? "none publishes anything else" : "these are published: " + seen) + "; " + elsewhere;
}

std::string DdsMatchWatch::findWanting(const std::string& topic) const
{
    const auto describe = [this](dds_instance_handle_t participant) { return describePeer(participant); };
    const std::string meant = _otherReaders.findMeant(_format.nameOf(topic), describe);
    return meant.empty() ? meant : "nobody subscribes to it, but " + meant;
}

void DdsMatchWatch::updateFrom(dds_entity_t reader, const Topics& ours, bool isWriter)
{
    DdsRemoteEndpoints& others = isWriter ? _otherWriters : _otherReaders;
    takeSamples<Take::All>(reader, [&](const void* sample, const dds_sample_info_t& info) {
        _found.erase(info.instance_handle);
        others.forget(info.instance_handle);
        if (!info.valid_data || info.instance_state != DDS_ALIVE_INSTANCE_STATE)
            return;
        const auto& other = *static_cast<const dds_builtintopic_endpoint_t*>(sample);
        if (isOurs(other))
            return;
        const auto topic = ours.find(std::string_view(other.topic_name));
        if (topic == ours.end() || !isInPartition(other.qos))
            return others.note(info.instance_handle, other);
        const std::string problem = compare(other, topic->second, isWriter);
        if (!problem.empty() && _found.size() < maxMismatches)
            _found[info.instance_handle] = {topic->second._label, problem};
    });
}

std::string DdsMatchWatch::compare(const dds_builtintopic_endpoint_t& other, const Topic& ours, bool isWriter) const
{
    const auto they = [&] {
        return describePeer(other.participant_instance_handle) + (isWriter ? " publishes " : " subscribes to ");
    };
    const auto type = [&] { return describeTopicType(ours._type); };
    if (other.type_name != ours._type)
        return they() + describeTopicType(other.type_name) + ", here it is " + type() + "; give both ends one type";
    // A reader may ask for no more than a writer offers.
    if (isWriter ? _quality._reliable && !isReliable(other.qos) : !_quality._reliable && isReliable(other.qos))
        return they() + type() + " with reliable=" + (isWriter ? "no" : "yes") +
               ", here it is reliable=" + (isWriter ? "yes" : "no") +
               "; set reliable=no where it is subscribed to, or yes where it is published";
    if (isWriter && _quality._lateJoiners && !keepsLast(other.qos))
        return they() + type() + " without keeping the last value for those that join later (transient-local), " +
               "which is needed here";
    return {};
}

bool DdsMatchWatch::isInPartition(const dds_qos_t* qos) const
{
    const auto names = readPartitions(qos);
    return names.empty() ? _quality._partition.empty() : std::ranges::find(names, _quality._partition) != names.end();
}

std::size_t DdsMatchWatch::countOthers() const
{
    std::size_t count = 0;
    readSamples(_participants.get(), DDS_HANDLE_NIL, [&](const void*, const dds_sample_info_t& info) {
        count += info.instance_state == DDS_ALIVE_INSTANCE_STATE && info.instance_handle != _own;
    });
    return count;
}

std::string DdsMatchWatch::describePeer(dds_instance_handle_t participant) const
{
    std::string peer = "another program";
    readSamples(_participants.get(), participant, [&peer](const void* sample, const dds_sample_info_t&) {
        const dds_qos_t* qos = static_cast<const dds_builtintopic_participant_t*>(sample)->qos;
        const std::string process = property(qos, "__ProcessName");
        if (!process.empty())
            peer = process + " (process " + property(qos, "__Pid") + " on " + property(qos, "__Hostname") + ")";
    });
    return peer;
}

} // namespace Trovio::Nodes
