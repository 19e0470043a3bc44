#pragma once

#include "nodes/dds/net/DdsDomainSettings.h"
#include "nodes/dds/net/DdsQos.h"
#include "nodes/dds/wire/TopicTypes.h"
#include "nodes/shared/SlotList.h"
#include <span>

namespace Trovio::Nodes {

/// All that a DDS node has.
struct DdsSettings {
    DdsDomainSettings _domain;
    DdsQuality _quality;
    std::vector<ListedSlot> _published;
    std::vector<ListedSlot> _subscribed;
    DdsFormat _format;
    bool _timing = true; // whether clocks are compared
};

/// The node's table of settings.
std::span<const Setting> ddsSettingRows();

/// Throws InvalidFieldException for what the table cannot say.
DdsSettings readDdsSettings(const Settings& settings);

} // namespace Trovio::Nodes
