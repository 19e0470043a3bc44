#include "benchmarks/peers/Dds.h"

#include <cstdio>
#include <cstdlib>

namespace Bench::Dds {

dds_entity_t check(dds_return_t result, const char* what)
{
    if (result >= 0)
        return result;
    std::fprintf(stderr, "Cyclone DDS: %s: %s\n", what, dds_strretcode(-result));
    std::exit(EXIT_FAILURE);
}

dds_entity_t participant()
{
    static const dds_entity_t made = [] {
        check(dds_create_domain(0, "<General><Interfaces><NetworkInterface name='lo'/></Interfaces>"
                                   "<AllowMulticast>false</AllowMulticast></General>"),
              "domain");
        return check(dds_create_participant(0, nullptr, nullptr), "participant");
    }();
    return made;
}

Topic::Topic(const dds_topic_descriptor_t& type)
    : _publisher(check(dds_create_publisher(participant(), nullptr, nullptr), "publisher")),
      _subscriber(check(dds_create_subscriber(participant(), nullptr, nullptr), "subscriber")),
      _qos(dds_create_qos())
{
    static int last = 0;
    dds_qset_reliability(_qos, DDS_RELIABILITY_RELIABLE, DDS_INFINITY);
    dds_qset_history(_qos, DDS_HISTORY_KEEP_LAST, 1);
    const std::string name = "bench" + std::to_string(++last);
    _topic = check(dds_create_topic(participant(), &type, name.c_str(), _qos, nullptr), "topic");
}

Topic::~Topic()
{
    for (const dds_entity_t entity : {_publisher, _subscriber, _topic})
        dds_delete(entity);
    dds_delete_qos(_qos);
}

dds_entity_t Topic::makeReader() const
{
    return check(dds_create_reader(_subscriber, _topic, _qos, nullptr), "reader");
}

dds_entity_t Topic::makeWriter() const
{
    return check(dds_create_writer(_publisher, _topic, _qos, nullptr), "writer");
}

} // namespace Bench::Dds
