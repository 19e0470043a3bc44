#pragma once

#include "monitor/mcap/format/Format.h"

#include <cstring>

namespace Monitor::Mcap {

/// Takes fields off bytes that come from outside. Once one is missing, it and all further ones are empty, and ok() is
/// false; so it is asked once, at the end. Texts and bytes refer into what was given.
class ByteCursor {
public:
    explicit ByteCursor(ByteView bytes) : _rest(bytes) {}

    bool ok() const { return _ok; }
    std::size_t left() const { return _rest.size(); }
    ByteView rest() { return bytes(_rest.size()); }

    ByteView bytes(std::uint64_t count)
    {
        if (count > _rest.size())
            _ok = false;
        if (!_ok)
            return {};
        const ByteView taken = _rest.first(static_cast<std::size_t>(count));
        _rest = _rest.subspan(taken.size());
        return taken;
    }

    template <class Number>
    Number number()
    {
        Number value{};
        if (const ByteView taken = bytes(sizeof value); _ok)
            std::memcpy(&value, taken.data(), sizeof value);
        return value;
    }

    std::string_view text() { return asText(bytes(number<std::uint32_t>())); }

    /// A key that comes twice is an error.
    Texts texts()
    {
        ByteCursor inside(bytes(number<std::uint32_t>()));
        Texts result;
        while (inside._ok && inside.left() > 0) {
            const std::string_view key = inside.text();
            const std::string_view value = inside.text();
            inside._ok = inside._ok && result.try_emplace(std::string(key), value).second;
        }
        _ok = _ok && inside._ok;
        return result;
    }

private:
    ByteView _rest;
    bool _ok = true;
};
} // namespace Monitor::Mcap
