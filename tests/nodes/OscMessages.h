#pragma once

#include <cstdint>
#include <initializer_list>
#include <lo/lo.h>
#include <memory>
#include <string>
#include <vector>

namespace Trovio::Nodes {

using Packet = std::vector<std::uint8_t>;
using LoMessage = std::unique_ptr<std::remove_pointer_t<lo_message>, decltype(&lo_message_free)>;

inline LoMessage newLoMessage()
{
    return {lo_message_new(), &lo_message_free};
}

/// The packet that liblo makes of a message, as other programs send it.
inline Packet serialised(const LoMessage& message, const std::string& address)
{
    Packet packet(lo_message_length(message.get(), address.c_str()));
    lo_message_serialise(message.get(), address.c_str(), packet.data(), nullptr);
    return packet;
}

/// A message of numbers, each written with the one type tag.
inline Packet numbersMessage(const std::string& address, char tag, const std::vector<double>& numbers)
{
    const LoMessage message = newLoMessage();
    for (const double number : numbers) {
        switch (tag) {
        case 'i':
            lo_message_add_int32(message.get(), static_cast<std::int32_t>(number));
            break;
        case 'h':
            lo_message_add_int64(message.get(), static_cast<std::int64_t>(number));
            break;
        case 'f':
            lo_message_add_float(message.get(), static_cast<float>(number));
            break;
        default:
            lo_message_add_double(message.get(), number);
        }
    }
    return serialised(message, address);
}

/// A message of arguments of several kinds, as lo_message_add() takes them.
template <class... Arguments>
Packet mixedMessage(const std::string& address, const char* tags, Arguments... arguments)
{
    const LoMessage message = newLoMessage();
    lo_message_add(message.get(), tags, arguments...);
    return serialised(message, address);
}

/// A packet from text and bytes put together by hand; fill it up to four bytes yourself.
inline Packet raw(const std::string& bytes)
{
    return {bytes.begin(), bytes.end()};
}

/// A bundle around packets, with a time tag.
inline Packet bundleOf(std::uint64_t tag, std::initializer_list<Packet> elements)
{
    Packet bundle = raw(std::string("#bundle\0", 8));
    for (int shift = 56; shift >= 0; shift -= 8)
        bundle.push_back(static_cast<std::uint8_t>(tag >> shift));
    for (const Packet& element : elements) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bundle.push_back(static_cast<std::uint8_t>(element.size() >> shift));
        bundle.insert(bundle.end(), element.begin(), element.end());
    }
    return bundle;
}

} // namespace Trovio::Nodes
