#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

// What an entry of the settings in and out says of a message: "/wand/position Vec3f", "/tracker i:3 _ Vec3f:position".
namespace Trovio::Nodes {

/// Arguments that are a slot's value: "Vec3f", "Vec3f:position".
struct OscSlotItem {
    std::string _typeName;   // of a slot value type
    std::string _labelEnd{}; // behind the address: nothing, or "/3/position"
};

/// An argument of this very value: "i:3", "s:Hmd", "T". It chooses messages that come in, and stands in those that go
/// out.
struct OscFixedItem {
    char _tag = 0;                                                            // that it is sent with
    std::variant<std::monostate, std::int64_t, double, std::string> _value{}; // of T, F, N, I; i, h; f, d; s
};

/// An argument that is not looked at, "_", or all that are left, "_[]".
struct OscSkippedItem {
    bool _isRest = false;
};

using OscItem = std::variant<OscSlotItem, OscFixedItem, OscSkippedItem>;

/// A message as an entry describes it.
struct OscEntry {
    OscEntry() = default;
    /// All arguments are the value of one slot, whose label is the address.
    OscEntry(std::string address, std::string typeName)
        : _address(std::move(address)), _title(_address), _items{OscSlotItem{std::move(typeName)}}
    {
    }

    std::string _address; // with its leading '/', and with '*' where that stands for any text without '/'
    std::string _title;   // what tells it from others: the address, and behind it the fixed arguments
    std::vector<OscItem> _items;

    bool hasStar() const { return _address.find('*') != std::string::npos; }
    std::string getLabel(const OscSlotItem& slot) const { return _address.substr(1) + slot._labelEnd; }
};

} // namespace Trovio::Nodes
