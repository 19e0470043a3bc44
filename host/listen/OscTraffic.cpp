#include "host/listen/OscTraffic.h"

#include "explain/text/Escape.h"
#include "host/ask/Steady.h"
#include "nodes/osc/address/OscAddressMap.h"
#include "nodes/osc/address/OscEntryList.h"

#include <algorithm>
#include <cstdio>

namespace Host {

using namespace Trovio::Nodes;

namespace {

constexpr std::size_t maxData = 512, maxArguments = 12, maxText = 40;

std::string shown(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", number);
    return text;
}

std::string shown(const OscArgument& argument)
{
    switch (argument._tag) {
    case 'i':
        return std::to_string(argument.asInt32());
    case 'h':
        return std::to_string(argument.asInt64());
    case 'f':
        return shown(argument.asFloat());
    case 'd':
        return shown(argument.asDouble());
    case 's':
    case 'S':
        return "\"" + Explain::escaped(argument.asText(), maxText) + "\"";
    case 'b':
        return "(" + std::to_string(argument._bytes.size()) + " bytes)";
    default:
        return {argument._tag};
    }
}
} // namespace

std::string OscRow::describeValues() const
{
    std::string text;
    OscArguments arguments(_tags, _data);
    for (std::size_t i = 0; !arguments.atEnd(); ++i) {
        const auto argument = i < maxArguments ? arguments.next() : std::nullopt;
        text += (text.empty() ? "" : " ") + (argument ? shown(*argument) : "…");
        if (!argument)
            break;
    }
    return text;
}

void OscTraffic::Messages::note(const OscMessage& message, double now)
{
    _guess.note(message);
    _row._tags = message._tags;
    const auto data = message._data.first(std::min(message._data.size(), maxData));
    _row._data.assign(data.begin(), data.end());
    if (++_row._count == 1)
        _first = now;
    _last = now;
}

void OscTraffic::visit(const OscMessage& message)
{
    const double now = steadySeconds();
    const Ostrel::LockGuard guard(_lock);
    if (Messages* const found = find(message))
        found->note(message, now);
    else
        ++_others;
}

/// Null where there are too many.
OscTraffic::Messages* OscTraffic::find(const OscMessage& message)
{
    const std::string_view name = message._address.substr(0, MaxOscAddress + 1); // no slot has a longer one
    auto known = _addresses.find(name);
    if (known == _addresses.end() && _rowCount < MaxRows)
        known = _addresses.emplace(name, Address()).first;
    if (known == _addresses.end())
        return nullptr;
    Address& address = known->second;
    const std::string device = address._isShared ? std::string() : OscGuess::findChoice(message);
    if (const auto found = address._devices.find(device); found != address._devices.end())
        return &found->second;
    if (address._devices.size() == MaxDevices)
        return &share(address);
    if (_rowCount == MaxRows)
        return nullptr;
    ++_rowCount;
    return &address._devices[device];
}

/// What seemed to tell devices apart is a number that goes on, or there are more devices than anybody wants to see.
OscTraffic::Messages& OscTraffic::share(Address& address)
{
    Messages all;
    for (const auto& [device, messages] : address._devices) {
        all._first = all._row._count == 0 ? messages._first : std::min(all._first, messages._first);
        all._row._count += messages._row._count;
    }
    _rowCount -= address._devices.size() - 1;
    address._isShared = true;
    address._devices.clear();
    return address._devices[{}] = std::move(all);
}

std::vector<OscRow> OscTraffic::rows() const
{
    const Ostrel::LockGuard guard(_lock);
    std::vector<OscRow> rows;
    for (const auto& [name, address] : _addresses)
        for (const auto& [device, messages] : address._devices) {
            OscRow row = messages._row;
            row._address = name;
            row._items = isOscAddress(name) ? messages._guess.getItems(!address._isShared) : std::string();
            row._title = messages._guess.getTitle();
            const double seconds = messages._last - messages._first;
            row._perSecond = seconds > 0 ? static_cast<double>(row._count - 1) / seconds : 0;
            rows.push_back(std::move(row));
        }
    return rows;
}

std::uint64_t OscTraffic::others() const
{
    const Ostrel::LockGuard guard(_lock);
    return _others;
}
} // namespace Host
