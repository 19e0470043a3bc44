#include "nodes/osc/OscDispatcher.h"

#include "nodes/osc/address/OscEntryList.h"
#include "nodes/osc/address/OscPattern.h"
#include "nodes/osc/packet/OscTags.h"
#include "nodes/shared/Report.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Exception.h"

namespace Trovio::Nodes {

namespace {

/// Slots that are known before the node runs are shown by the node itself.
void showNothing(const std::vector<BasicOutSlot*>&) {}

OscEntry withAddress(OscEntry entry, std::string_view address)
{
    entry._title.replace(0, entry._address.size(), address);
    entry._address = address;
    return entry;
}

} // namespace

OscDispatcher::OscDispatcher(const std::vector<OscEntry>& entries, OscInCounters& counters, Show show)
    : _counters(counters), _show(std::move(show)), _unknown(listAddresses(entries))
{
    std::vector<std::unique_ptr<Place>> places;
    std::unordered_map<std::string_view, Place*> known;
    for (const OscEntry& entry : entries) {
        if (entry.hasStar()) {
            addStar(entry);
            continue;
        }
        if (known.count(entry._address) == 0) {
            places.push_back(std::make_unique<Place>(entry._address));
            known.emplace(entry._address, places.back().get());
        }
        known[entry._address]->_methods.emplace_back(entry);
    }
    for (auto& place : places)
        keep(std::move(place), showNothing);
}

std::vector<std::string> OscDispatcher::listAddresses(const std::vector<OscEntry>& entries)
{
    std::vector<std::string> addresses;
    addresses.reserve(entries.size());
    for (const OscEntry& entry : entries)
        addresses.push_back(entry._address);
    return addresses;
}

void OscDispatcher::addStar(const OscEntry& entry)
{
    Star& star = _stars.emplace_back(entry);
    const Ostrel::LockGuard guard(_lock);
    star._trial._number = _shown.size();
    _shown.push_back({&star._trial._method, entry._address, true});
}

/// All of it or, where there is no memory or the slots cannot be shown, nothing.
void OscDispatcher::keep(std::unique_ptr<Place> place, const Show& show)
{
    std::vector<BasicOutSlot*> slots;
    std::vector<Shown> shown;
    for (const Method& method : place->_methods) {
        shown.push_back({&method._method, place->_address, false});
        slots.insert(slots.end(), method._method.getSlots().begin(), method._method.getSlots().end());
    }
    _places.emplace_back();
    const auto known = _byAddress.emplace(place->_address, place.get()).first;
    try {
        {
            const Ostrel::LockGuard guard(_lock);
            _shown.reserve(_shown.size() + shown.size());
        }
        show(slots);
    } catch (...) {
        _byAddress.erase(known);
        _places.pop_back();
        throw;
    }
    const Ostrel::LockGuard guard(_lock);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        place->_methods[i]._number = _shown.size();
        _shown.push_back(std::move(shown[i]));
    }
    _places.back() = std::move(place);
}

void OscDispatcher::visit(const OscMessage& message)
{
    _counters._messages.add();
    // No address of a slot is a pattern, so the address need not be searched for one first.
    if (const auto found = _byAddress.find(message._address); found != _byAddress.end())
        deliver(*found->second, message);
    else if (isOscPattern(message._address))
        visitMatching(message);
    else if (_stars.empty() || !visitStars(message))
        noteUnknown(message);
}

void OscDispatcher::visitMatching(const OscMessage& message)
{
    bool isKnown = false;
    for (const auto& place : _places) {
        if (matchesOscPattern(message._address, place->_map)) {
            isKnown = true;
            deliver(*place, message);
        }
    }
    if (!isKnown)
        noteUnknown(message);
}

/// False if no star means the address.
bool OscDispatcher::visitStars(const OscMessage& message)
{
    if (!isOscAddress(message._address))
        return false;
    const OscAddressMap map(message._address);
    std::vector<Star*> meant;
    Outcome outcome;
    for (Star& star : _stars)
        if (matchesOscPattern(star._entry._address, map)) {
            meant.push_back(&star);
            outcome.note(star._trial._method.read(message), star._trial);
        }
    Place* const place = outcome._isTaken ? grow(std::string(message._address), meant) : nullptr;
    if (place)
        deliver(*place, message);
    else if (outcome._isTaken)
        return false;
    else
        settle(outcome, message);
    return true;
}

/// Null if it gets no slots.
OscDispatcher::Place* OscDispatcher::grow(const std::string& address, const std::vector<Star*>& stars)
{
    if (_grown >= MaxOscGrown) {
        if (_grown++ == MaxOscGrown)
            report(osg::LogWarning, "OSC: " + std::to_string(MaxOscGrown) +
                                        " addresses got slots by '*' in their entry; no further one does");
        return nullptr;
    }
    auto place = std::make_unique<Place>(address);
    for (const Star* const star : stars)
        place->_methods.emplace_back(withAddress(star->_entry, address));
    const std::string slots = describeSlots(*place);
    Place* const made = place.get();
    const bool isShown = keepIfShown(std::move(place));
    ++_grown;
    if (!isShown)
        return nullptr;
    {
        const Ostrel::LockGuard guard(_lock);
        for (const Star* const star : stars)
            _shown[star->_trial._number]._isGrown = true;
    }
    report(osg::LogAlways, "OSC: new slots for " + address + ": " + slots);
    return made;
}

/// False where its labels are taken: the address then has a place without methods, not to be tried again.
bool OscDispatcher::keepIfShown(std::unique_ptr<Place> place)
{
    const std::string address = place->_address;
    try {
        keep(std::move(place), _show);
        return true;
    } catch (const Exception& refusal) {
        report(osg::LogWarning, "OSC: no slot for " + address + ": " + refusal.getMessage());
    }
    keep(std::make_unique<Place>(address), showNothing);
    return false;
}

std::string OscDispatcher::describeSlots(const Place& place)
{
    std::string text;
    for (const Method& method : place._methods)
        for (const BasicOutSlot* const slot : method._method.getSlots())
            text += (text.empty() ? "'" : ", '") + slot->getName() + "' (" + slot->getTypeName() + ")";
    return text;
}

void OscDispatcher::Outcome::note(OscFit fit, const Method& method)
{
    if (fit == OscFit::Fits)
        _isTaken = true;
    else if (fit == OscFit::Differs && !_differing)
        _differing = &method;
}

void OscDispatcher::deliver(Place& place, const OscMessage& message)
{
    Outcome outcome;
    for (Method& method : place._methods) {
        const OscFit fit = method._method.deliver(message);
        outcome.note(fit, method);
        if (fit == OscFit::Fits)
            _counters._values.add(method._method.getSlots().size());
    }
    settle(outcome, message);
}

void OscDispatcher::settle(const Outcome& outcome, const OscMessage& message)
{
    if (outcome._isTaken)
        return;
    if (outcome._differing) {
        _counters._mismatched.add();
        countMismatch(*outcome._differing, message);
    } else {
        noteUnknown(message);
    }
}

void OscDispatcher::noteUnknown(const OscMessage& message)
{
    _counters._unknown.add();
    _unknown.note(message);
}

void OscDispatcher::countMismatch(const Method& method, const OscMessage& message)
{
    const std::string tags = describeOscTags(message._tags);
    {
        const Ostrel::LockGuard guard(_lock);
        Shown& shown = _shown[method._number];
        shown._differ = shown._differ || (shown._mismatches != 0 && shown._tags != tags);
        shown._tags = tags;
        if (++shown._mismatches > 1)
            return; // reporting once is enough: the sender will go on
    }
    const std::string expected = method._method.getExpected();
    report(osg::LogWarning, method._method.getTitle() + ": expected " + expected + ", got " +
                                shortenOscTags(message._tags) +
                                (message._tags == expected ? " with numbers that do not fit the blob" : ""));
}

std::string OscDispatcher::describeMismatches(const Shown& shown)
{
    const std::string expected = shown._method->getExpected();
    if (shown._mismatches == 0)
        return {};
    return std::to_string(shown._mismatches) + " came with " + shown._tags + (shown._differ ? " or others" : "") +
           ", wanted " + (expected.front() == '(' ? expected : "(" + expected + ")");
}

std::vector<RemarkInfo> OscDispatcher::getRemarks(const std::string& received, bool any, const std::string& lost) const
{
    std::vector<Shown> methods;
    {
        const Ostrel::LockGuard guard(_lock);
        methods = _shown;
    }
    std::vector<RemarkInfo> remarks;
    for (const Shown& shown : methods) {
        const std::string mismatches = describeMismatches(shown);
        const std::string instead =
            !mismatches.empty() ? mismatches
                                : "none for " + shown._method->getTitle() + _unknown.describeFor(shown._address);
        for (const BasicOutSlot* const slot : shown._method->getSlots())
            if (!shown._isGrown && slot->getActivity()._written == 0)
                remarks.push_back({slot->getName(), received + (any ? ", " + instead : "") + lost});
            else if (!mismatches.empty())
                remarks.push_back({slot->getName(), mismatches});
    }
    return remarks;
}

void OscDispatcher::forEachSlot(const std::function<void(BasicOutSlot&)>& use)
{
    for (const auto& place : _places)
        for (const Method& method : place->_methods)
            for (BasicOutSlot* const slot : method._method.getSlots())
                use(*slot);
}

} // namespace Trovio::Nodes
