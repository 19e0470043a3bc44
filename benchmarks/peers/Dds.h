#pragma once

#include "Record.h"
#include <dds/dds.h>
#include <string>

namespace Bench::Dds {

/// Ends the program with what the library says when a handle or a result is an error.
dds_entity_t check(dds_return_t result, const char* what);

/// The participant of this program, on the loopback interface only.
dds_entity_t participant();

/// A topic with a name that nobody else has; readers and writers of it keep the newest sample, and none is lost
/// between them.
class Topic {
public:
    explicit Topic(const dds_topic_descriptor_t& type);
    Topic(const Topic&) = delete;
    Topic& operator=(const Topic&) = delete;
    /// Takes its readers and writers with it.
    ~Topic();

    dds_entity_t makeReader() const;
    dds_entity_t makeWriter() const;

private:
    dds_entity_t _publisher, _subscriber, _topic;
    dds_qos_t* _qos;
};

} // namespace Bench::Dds
