#include "nodes/osc/OscAddressList.h"

#include "nodes/osc/OscPattern.h"
#include "trovio/SlotTypes.h"
#include <algorithm>
#include <set>

namespace Trovio::Nodes {

namespace {

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

bool isAddress(std::string_view text)
{
    const auto isPlain = [](char character) {
        return character > ' ' && character <= '~' &&
               std::string_view("#*,?[]{}").find(character) == std::string_view::npos;
    };
    return text.size() > 1 && text.size() <= MaxOscAddress && text.front() == '/' &&
           std::all_of(text.begin(), text.end(), isPlain);
}

std::string typeNames()
{
    std::string names;
    forEachSlotType([&names]<class T>(TypeTag<T>) { names += (names.empty() ? "" : ", ") + TypeName<T>::getName(); });
    return names;
}

OscAddress readEntry(const Settings& settings, const char* name, std::string_view entry)
{
    const std::size_t blank = entry.find(' ');
    const std::string address(entry.substr(0, blank));
    const std::string typeName(blank == std::string_view::npos ? "" : trimmed(entry.substr(blank)));
    const std::string where = "in the entry '" + std::string(entry) + "' ";
    if (!isAddress(address))
        throw settings.refusal(name, where + "an address: '/' and up to " + std::to_string(MaxOscAddress - 1) +
                                         " more printable characters without blanks and #*,?[]{}");
    if (!withSlotType(typeName, [](auto) {}))
        throw settings.refusal(name, where + "an address, a blank and one of " + typeNames());
    return {address, typeName};
}

} // namespace

std::vector<OscAddress> readOscAddresses(const Settings& settings, const char* name)
{
    std::vector<OscAddress> addresses;
    std::set<std::string> seen;
    std::string_view rest = settings.text(name);
    while (!rest.empty()) {
        const auto entry = rest.substr(0, rest.find(','));
        addresses.push_back(readEntry(settings, name, trimmed(entry)));
        if (!seen.insert(addresses.back()._address).second)
            throw settings.refusal(name, "each address once, but " + addresses.back()._address + " stands there twice");
        if (entry.size() + 1 == rest.size())
            throw settings.refusal(name, "no comma behind the last entry");
        rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
    }
    return addresses;
}

} // namespace Trovio::Nodes
