#include "nodes/osc/address/OscAddressList.h"

#include "nodes/osc/address/OscPattern.h"
#include "nodes/shared/SlotList.h"
#include <algorithm>

namespace Trovio::Nodes {

bool isOscAddress(std::string_view text)
{
    const auto isPlain = [](char character) {
        return character > ' ' && character <= '~' &&
               std::string_view("#*,?[]{}").find(character) == std::string_view::npos;
    };
    return text.size() > 1 && text.size() <= MaxOscAddress && text.front() == '/' &&
           std::all_of(text.begin(), text.end(), isPlain);
}

std::vector<OscAddress> readOscAddresses(const Settings& settings, const char* name)
{
    std::vector<OscAddress> addresses;
    for (const auto& [address, typeName] : readSlotList(settings, name,
                                                        {isOscAddress, "an address",
                                                         "'/' and up to " + std::to_string(MaxOscAddress - 1) +
                                                             " more printable characters without blanks and #*,?[]{}"}))
        addresses.push_back({address, typeName});
    return addresses;
}

} // namespace Trovio::Nodes
