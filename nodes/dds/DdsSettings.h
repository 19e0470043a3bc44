#pragma once

#include "nodes/dds/DdsSession.h"
#include "trovio/Settings.h"
#include <span>

namespace Trovio::Nodes {

/// The node's table of settings.
std::span<const Setting> ddsSettingRows();

/// Throws InvalidFieldException for what the table cannot say.
DdsSettings readDdsSettings(const Settings& settings);

} // namespace Trovio::Nodes
