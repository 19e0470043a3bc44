#pragma once

#include "merid/URL.h"
#include "trovio/Setting.h"
#include <cstdint>
#include <optional>
#include <string>

namespace Trovio {

/// A network address as a setting names it, not looked up.
struct Endpoint {
    std::string _host; // without brackets; "127.0.0.1" where none was written
    std::uint16_t _port = 0;
    bool operator==(const Endpoint&) const = default;
};

/// What a setting's text means, read as its row's kind; only that kind's member is set.
struct SettingValue {
    double _number = 0.0;
    std::int64_t _integer = 0; // also the position of a choice, and 0 or 1
    std::optional<Endpoint> _endpoint;
    std::string _path;
};

/// Reads text as the row says. What is allowed instead, if it is none of that; nothing if all is well.
std::optional<std::string> readSettingValue(const Setting& row, const std::string& text, const Merid::URL& baseURL,
                                            SettingValue& value);

} // namespace Trovio
