#pragma once

#include "monitor/codec/AnySource.h"
#include "monitor/codec/Bytes.h"

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string_view>

namespace Monitor {

/// How the values of one slot type are written as bytes and as text, for who does not know the type. Who knows it takes
/// encode() and decode() (Encode.h); taps are made by makeTap() (tap/AnyTap.h).
/// Threads: any; a codec is never changed.
class SlotCodec {
public:
    /// Null if that is no slot type.
    static const SlotCodec* find(std::string_view slotType);
    /// All 40, in the order of the list of slot types.
    static std::span<const SlotCodec* const> all();

    SlotCodec() = default;
    SlotCodec(const SlotCodec&) = delete;
    SlotCodec& operator=(const SlotCodec&) = delete;
    virtual ~SlotCodec() = default;

    /// "Vec3f", "Image[]"
    virtual std::string_view slotType() const = 0;
    /// "geometry_msgs/msg/Point32"
    virtual std::string_view schemaName() const = 0;
    /// As ros2msg: the fields, then each message that they name behind a line of equals signs.
    virtual const std::string& schemaText() const = 0;

    /// A message as the JSON that the host shows for the value, on one line. False, with what is wrong and where, for
    /// bytes that are no such message.
    virtual bool toJson(std::span<const std::byte> message, std::string& json, std::string& problem) const = 0;
    /// The message for a value in JSON; null is a number that is none. False, with what is wrong, where, and what is
    /// allowed, for JSON that is no such value. Images are refused: JSON says what they are and has no pixels.
    virtual bool fromJson(const nlohmann::json& json, Bytes& message, std::string& problem) const = 0;

    /// A slot of that name. Images and arrays come from the pools of the product.
    virtual std::unique_ptr<AnySource> makeSource(const std::string& name) const = 0;
};

} // namespace Monitor
