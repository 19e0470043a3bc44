#pragma once

#include "base/Mutex.h"
#include "nodes/dds/net/DdsDomainSettings.h"
#include "nodes/dds/net/DdsEntity.h"
#include "nodes/dds/net/LocalTopic.h"
#include <map>
#include <memory>

namespace Trovio::Nodes {

/// This program's part in a DDS domain: its sockets and threads, shared by all nodes that name the same number.
/// On the loopback its sockets take nothing that comes in from another interface.
/// Threads: open() and the last handle's end from any thread; both may take milliseconds.
class DdsDomain {
public:
    /// Joins what is open already, or opens it. Throws DdsProblem where it is open with other settings, or where the
    /// interface is not there.
    static std::shared_ptr<DdsDomain> open(const DdsDomainSettings& settings);

    explicit DdsDomain(const DdsDomainSettings& settings);

    const DdsDomainSettings& getSettings() const { return _settings; }
    std::string describe() const { return _settings.describe(_addresses); }

    /// False once its interface has other addresses than when it was opened: peers know the old ones. While it has
    /// none, or nothing leads to the first host, the old ones may yet come back.
    bool isCurrent() const;

    /// The same object for all who name a topic.
    std::shared_ptr<LocalTopic> getTopic(const std::string& name) OSTREL_EXCLUDES(_lock);

private:
    const DdsDomainSettings _settings;
    const std::string _addresses;
    const DdsEntity _domain;

    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::map<std::string, std::weak_ptr<LocalTopic>> _topics OSTREL_GUARDED_BY(_lock);
};

} // namespace Trovio::Nodes
