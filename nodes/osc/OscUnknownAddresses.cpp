#include "nodes/osc/OscUnknownAddresses.h"

#include "nodes/osc/address/OscEntryList.h"
#include "nodes/osc/address/OscPattern.h"
#include "nodes/osc/packet/OscGuess.h"
#include "nodes/osc/packet/OscTags.h"
#include "nodes/shared/Report.h"
#include "trovio/messages/NearestName.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxDescribed = 3;

/// What the user may write to get the messages.
std::string cureFor(const OscMessage& message)
{
    OscGuess guess;
    guess.note(message);
    const std::string items = guess.getItems();
    if (items.empty())
        return message._tags.empty() ? "; only types with [] take that" : "; no slot type takes that";
    if (!isOscAddress(message._address))
        return "; no slot can have that address";
    return std::string("; ") + guess.getTitle() + quoteOscEntries(std::string(message._address) + " " + items) +
           " would take it";
}

std::string describe(const OscMessage& message, std::string_view address, std::string_view nearest)
{
    const bool isKnown = nearest == address; // with other fixed arguments
    const std::string choice = isKnown ? OscGuess::findChoice(message) : std::string();
    const std::string text = "OSC: no slot for " + std::string(address) + (choice.empty() ? "" : " " + choice) +
                             ", which comes with " + describeOscTags(message._tags);
    if (isOscPattern(address))
        return text + "; the pattern fits no address";
    return text + cureFor(message) +
           (nearest.empty() || isKnown ? "" : "; the nearest address with a slot is " + std::string(nearest));
}

} // namespace

OscUnknownAddresses::OscUnknownAddresses(std::vector<std::string> known)
    : _addresses(std::move(known)), _known(_addresses.begin(), _addresses.end())
{
}

void OscUnknownAddresses::note(const OscMessage& message)
{
    const std::string_view address = message._address.substr(0, MaxOscAddress); // no slot has a longer one
    if (!countKnown(address))
        remember(message, address);
}

bool OscUnknownAddresses::countKnown(std::string_view address)
{
    const Ostrel::LockGuard guard(_lock);
    const auto found = _named.find(address);
    if (found != _named.end())
        ++found->second._count;
    else if (_others != 0)
        ++_others;
    return found != _named.end() || _others != 0;
}

void OscUnknownAddresses::remember(const OscMessage& message, std::string_view address)
{
    const std::string_view nearest = nearestName(address, _known);
    bool isFull = false;
    {
        const Ostrel::LockGuard guard(_lock);
        isFull = _named.size() == MaxNamed;
        if (isFull)
            _others = 1;
        else
            _named.emplace(address, Count{describeOscTags(message._tags), nearest, 1});
    }
    report(osg::LogWarning, isFull ? "OSC: " + std::to_string(MaxNamed) + " addresses without a slot were named; " +
                                         "messages of further ones are only counted"
                                   : describe(message, address, nearest));
}

std::string OscUnknownAddresses::describeFor(std::string_view address) const
{
    const Ostrel::LockGuard guard(_lock);
    std::vector<const Named::value_type*> entries;
    std::uint64_t rest = _others;
    for (const auto& entry : _named) {
        entries.push_back(&entry);
        rest += entry.second._count;
    }
    std::sort(entries.begin(), entries.end(), [address](const auto* left, const auto* right) {
        const auto weight = [address](const auto* entry) {
            return std::pair(entry->second._nearest == address, entry->second._count);
        };
        return weight(left) > weight(right);
    });
    entries.resize(std::min(entries.size(), maxDescribed));
    std::string text;
    for (const auto* entry : entries) {
        text += ", " + std::to_string(entry->second._count) + " for " + entry->first + " " +
                (entry->second._tags.front() == '(' ? "" : "with ") + entry->second._tags;
        rest -= entry->second._count;
    }
    return rest == 0 ? text : text + ", " + std::to_string(rest) + " for others";
}

} // namespace Trovio::Nodes
