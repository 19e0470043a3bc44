#include "nodes/dds/DdsDomain.h"

#include "nodes/dds/DdsConfig.h"
#include "nodes/dds/DdsLog.h"
#include "nodes/dds/LoopbackOnly.h"
#include "nodes/dds/OwnAddress.h"
#include <optional>

namespace Trovio::Nodes {

namespace {

/// The domains of this program. The library's own threads outlive static objects, so this one is never destroyed.
struct OpenDomains {
    Ostrel::Mutex _lock;
    std::map<unsigned, std::weak_ptr<DdsDomain>> _domains OSTREL_GUARDED_BY(_lock);

    static OpenDomains& get()
    {
        static OpenDomains& domains = *new OpenDomains;
        return domains;
    }
};

/// Under the lock, so that nobody opens a domain that is just being closed.
void closeDomain(DdsDomain* domain)
{
    OpenDomains& open = OpenDomains::get();
    const Ostrel::LockGuard guard(open._lock);
    open._domains.erase(domain->getSettings()._number);
    delete domain;
}

DdsEntity createDomain(const DdsDomainSettings& settings)
{
    const std::string config = makeDdsConfig(settings);
    std::optional<LoopbackOnly> confinement;
    if (settings.isLoopback())
        confinement.emplace(settings);
    DdsLog::Listening log;
    const dds_entity_t result = dds_create_domain(settings._number, config.c_str());
    if (result < 0)
        throw DdsProblem("cannot open " + settings.describe() + ": " +
                         (log.text().empty() ? dds_strretcode(result) : log.text()) +
                         "; choose a network interface of this machine with interface=NAME");
    DdsEntity domain(result, "");
    if (confinement)
        confinement->confine();
    return domain;
}

} // namespace

std::string DdsDomainSettings::describe(const std::string& ownAddress) const
{
    std::string text = "domain " + std::to_string(_number);
    if (!_interface.empty())
        text += " on interface " + _interface;
    else
        text += ownAddress.empty() ? " towards " + _hosts.front() : " at address " + ownAddress;
    if (isLoopback())
        return text + ", this machine only";
    return text + (isMulticast() ? ", peers found by multicast" : ", without multicast");
}

std::shared_ptr<DdsDomain> DdsDomain::open(const DdsDomainSettings& settings)
{
    OpenDomains& open = OpenDomains::get();
    std::shared_ptr<DdsDomain> domain;
    const Ostrel::LockGuard guard(open._lock);
    if (const auto found = open._domains.find(settings._number); found != open._domains.end())
        domain = found->second.lock();
    if (!domain) {
        domain = std::shared_ptr<DdsDomain>(new DdsDomain(settings), closeDomain);
        open._domains[settings._number] = domain;
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
