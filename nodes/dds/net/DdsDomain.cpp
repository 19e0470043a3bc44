#include "nodes/dds/net/DdsDomain.h"

#include "nodes/dds/net/DdsLog.h"
#include "nodes/dds/net/DdsResources.h"
#include "nodes/dds/net/LoopbackOnly.h"
#include "nodes/dds/net/OwnAddress.h"
#include <optional>

namespace Trovio::Nodes {

namespace {

/// The domains of this program. The library's own threads outlive static objects, so this one is never destroyed.
struct OpenDomains {
    struct Domain {
        std::unique_ptr<DdsDomain> _domain;
        std::weak_ptr<DdsDomain> _users;
    };
    Ostrel::Mutex _lock{Ostrel::LockRank::NodeQueue}; // held while the library opens or closes a domain, and logs
    std::map<unsigned, Domain> _domains OSTREL_GUARDED_BY(_lock); // by their numbers

    static OpenDomains& get()
    {
        static OpenDomains& domains = *new OpenDomains;
        return domains;
    }
};

/// Unless somebody has opened it again since its last user left.
void closeUnused(unsigned number)
{
    OpenDomains& open = OpenDomains::get();
    const Ostrel::LockGuard guard(open._lock);
    if (const auto found = open._domains.find(number); found != open._domains.end() && found->second._users.expired())
        open._domains.erase(found);
}

/// Apart from its interface a domain needs a free participant index.
std::string cureFor(const DdsDomainSettings& settings)
{
    if (findOwnAddresses(settings).empty())
        return "; choose a network interface of this machine with interface=NAME";
    return "; processes=" + std::to_string(settings._processes) +
           " is how many programs of a machine may take part: raise it everywhere if there are more";
}

DdsEntity createDomain(const DdsDomainSettings& settings)
{
    if (const std::string shortage = findShortage(); !shortage.empty())
        throw DdsProblem("cannot open " + settings.describe() + ": " + shortage);
    const std::string config = settings.makeConfig();
    std::optional<LoopbackOnly> confinement;
    if (settings.isLoopback())
        confinement.emplace(settings);
    DdsLog::Listening log;
    const dds_entity_t result = dds_create_domain(settings._number, config.c_str());
    if (result < 0)
        throw DdsProblem("cannot open " + settings.describe() + ": " +
                         (log.text().empty() ? dds_strretcode(result) : log.text()) + cureFor(settings));
    DdsEntity domain(result, "");
    if (confinement)
        confinement->confine();
    return domain;
}

} // namespace

std::shared_ptr<DdsDomain> DdsDomain::open(const DdsDomainSettings& settings)
{
    OpenDomains& open = OpenDomains::get();
    // Both end after the guard: the last one takes the lock, also where there is no memory for the first.
    const std::shared_ptr<void> user(nullptr, [number = settings._number](void*) { closeUnused(number); });
    std::shared_ptr<DdsDomain> domain;
    const Ostrel::LockGuard guard(open._lock);
    auto& [owned, users] = open._domains[settings._number];
    domain = users.lock();
    if (!domain) {
        owned.reset(); // its last user is just leaving; the library allows one domain of a number
        owned = std::make_unique<DdsDomain>(settings);
        domain = {user, owned.get()};
        users = domain;
    }
    if (!(domain->getSettings() == settings))
        throw DdsProblem("another node of this program has already opened " + domain->describe() +
                         "; give both the same interface, host, lease, processes and largest, or another domain");
    if (!domain->isCurrent())
        throw DdsProblem("another node of this program still has " + domain->describe() +
                         " open with an address that is gone; it is tried again");
    return domain;
}

bool DdsDomain::isCurrent() const
try {
    if (_settings.isLoopback())
        return true;
    const std::string addresses = findOwnAddresses(_settings);
    return addresses.empty() || addresses == _addresses;
} catch (const DdsProblem&) {
    return true; // no way to the first host, for now
}

std::shared_ptr<LocalTopic> DdsDomain::getTopic(const std::string& name)
{
    const Ostrel::LockGuard guard(_lock);
    std::erase_if(_topics, [](const auto& topic) { return topic.second.expired(); });
    auto& found = _topics[name];
    auto topic = found.lock();
    if (!topic)
        found = topic = std::make_shared<LocalTopic>();
    return topic;
}

DdsDomain::DdsDomain(const DdsDomainSettings& settings)
    : _settings(settings), _addresses(findOwnAddresses(settings)), _domain(createDomain(settings))
{
}

} // namespace Trovio::Nodes
