#include "nodes/osc/OscDispatcher.h"

#include "nodes/osc/address/OscPattern.h"
#include "nodes/osc/packet/OscTags.h"
#include "nodes/shared/Report.h"
#include "trovio/BasicOutSlot.h"

namespace Trovio::Nodes {

OscDispatcher::OscDispatcher(const std::vector<OscAddress>& addresses, OscInCounters& counters)
    : _counters(counters), _methods(makeMethods(addresses)), _unknown(listAddresses()), _mismatches(_methods.size())
{
    for (std::size_t i = 0; i < _methods.size(); ++i)
        _positions.emplace(_methods[i]._address._address, i);
}

std::vector<OscDispatcher::Method> OscDispatcher::makeMethods(const std::vector<OscAddress>& addresses)
{
    std::vector<Method> methods;
    for (const OscAddress& address : addresses)
        methods.push_back({address, OscMethod::create(address), OscAddressMap(address._address)});
    return methods;
}

std::vector<std::string_view> OscDispatcher::listAddresses() const
{
    std::vector<std::string_view> addresses;
    for (const Method& method : _methods)
        addresses.emplace_back(method._address._address);
    return addresses;
}

void OscDispatcher::visit(const OscMessage& message)
{
    _counters._messages.add();
    if (isOscPattern(message._address)) {
        visitMatching(message);
        return;
    }
    if (const auto found = _positions.find(message._address); found != _positions.end()) {
        deliver(found->second, message);
        return;
    }
    _counters._unknown.add();
    _unknown.note(message);
}

void OscDispatcher::visitMatching(const OscMessage& message)
{
    bool isKnown = false;
    for (std::size_t i = 0; i < _methods.size(); ++i) {
        if (matchesOscPattern(message._address, _methods[i]._map)) {
            isKnown = true;
            deliver(i, message);
        }
    }
    if (isKnown)
        return;
    _counters._unknown.add();
    _unknown.note(message);
}

void OscDispatcher::deliver(std::size_t position, const OscMessage& message)
{
    if (_methods[position]._method->deliver(message)) {
        _counters._values.add();
        return;
    }
    _counters._mismatched.add();
    countMismatch(position, message);
}

void OscDispatcher::countMismatch(std::size_t position, const OscMessage& message)
{
    const std::string tags = describeOscTags(message._tags);
    {
        const Ostrel::LockGuard guard(_lock);
        Mismatches& before = _mismatches[position];
        before._differ = before._differ || (before._count != 0 && before._tags != tags);
        before._tags = tags;
        if (++before._count > 1)
            return; // reporting once is enough: the sender will go on
    }
    const std::string expected = _methods[position]._method->getExpected();
    report(osg::LogWarning, _methods[position]._address._address + ": expected " + expected + ", got " +
                                shortenOscTags(message._tags) +
                                (message._tags == expected ? " with numbers that do not fit the blob" : ""));
}

OscDispatcher::Mismatches OscDispatcher::getMismatches(std::size_t position) const
{
    const Ostrel::LockGuard guard(_lock);
    return _mismatches[position];
}

std::string OscDispatcher::describeMismatches(std::size_t position) const
{
    const Mismatches refused = getMismatches(position);
    const std::string expected = _methods[position]._method->getExpected();
    if (refused._count == 0)
        return {};
    return std::to_string(refused._count) + " came with " + refused._tags + (refused._differ ? " or others" : "") +
           ", wanted " + (expected.front() == '(' ? expected : "(" + expected + ")");
}

std::vector<RemarkInfo> OscDispatcher::getRemarks(const std::string& received, bool any, const std::string& lost) const
{
    std::vector<RemarkInfo> remarks;
    for (std::size_t i = 0; i < _methods.size(); ++i) {
        const OscAddress& address = _methods[i]._address;
        const std::string mismatches = describeMismatches(i);
        const std::string instead =
            !mismatches.empty() ? mismatches : "none for " + address._address + _unknown.describeFor(address._address);
        if (_methods[i]._method->getSlot().getActivity()._written == 0)
            remarks.push_back({address.getLabel(), received + (any ? ", " + instead : "") + lost});
        else if (!mismatches.empty())
            remarks.push_back({address.getLabel(), mismatches});
    }
    return remarks;
}

void OscDispatcher::forEachSlot(const std::function<void(BasicOutSlot&)>& use)
{
    for (const Method& method : _methods)
        use(method._method->getSlot());
}

} // namespace Trovio::Nodes
