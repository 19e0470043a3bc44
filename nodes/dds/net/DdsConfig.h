#pragma once

#include "nodes/dds/net/DdsDomainSettings.h"

namespace Trovio::Nodes {

/// The domain's configuration as the library reads it: made from the settings alone, whatever the environment says.
/// Interface and hosts must be plain: names of interfaces, numeric addresses. Throws DdsProblem where no interface
/// leads to the first host.
std::string makeDdsConfig(const DdsDomainSettings& settings);

} // namespace Trovio::Nodes
