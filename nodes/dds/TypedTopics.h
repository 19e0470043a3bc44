#pragma once

#include "nodes/dds/DdsPublication.h"
#include "nodes/dds/DdsSubscription.h"

// Subscriptions and publications for the slot value type that a setting names, which must have a topic type in the
// format.
namespace Trovio::Nodes {

std::unique_ptr<DdsSubscription> createSubscription(const ListedSlot& topic, const DdsFormat& format,
                                                    DdsInCounters& counters, Clock& clock);

/// arrived is called on the pushing thread after each record, under locks: it may only wake somebody.
std::unique_ptr<DdsPublication> createPublication(const ListedSlot& topic, const DdsFormat& format, unsigned capacity,
                                                  DdsOutCounters& counters, Clock& clock,
                                                  std::function<void()> arrived);

} // namespace Trovio::Nodes
