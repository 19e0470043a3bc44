#pragma once

#include "nodes/dds/net/DdsDomainSettings.h"

namespace Trovio::Nodes {

/// The address that this machine sends from to a numeric address. Throws DdsProblem where nothing leads there.
std::string addressTowards(const std::string& host);

/// The addresses that peers of the domain know this machine by; empty where its interface has none. Throws DdsProblem
/// where no interface leads to the first host.
std::string findOwnAddresses(const DdsDomainSettings& settings);

} // namespace Trovio::Nodes
