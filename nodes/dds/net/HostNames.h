#pragma once

#include "nodes/shared/NameLookup.h"
#include <string>
#include <vector>

namespace Trovio::Nodes {

/// Resolves the names of hosts without blocking its thread.
/// Threads: one.
class HostNames {
public:
    HostNames(std::vector<std::string> hosts, std::unique_ptr<NameLookup> lookup)
        : _hosts(std::move(hosts)), _lookup(std::move(lookup))
    {
    }

    /// All addresses, numeric and of one family, or nothing while an answer is pending: call it again then. Throws
    /// DdsProblem where a host is not known. After that, or after all were found, it begins anew.
    std::optional<std::vector<std::string>> find();

    /// Cancels the lookup that is under way.
    void cancel();

private:
    bool findNext();

    const std::vector<std::string> _hosts;
    const std::unique_ptr<NameLookup> _lookup;
    bool _isAsking = false;
    std::vector<std::string> _found; // of the first hosts
};

/// Why hosts with these numeric addresses cannot be peers of one domain; empty if they can.
std::string findMixture(const std::vector<std::string>& addresses);

} // namespace Trovio::Nodes
