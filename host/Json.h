#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Ostrel {
class Field;
}

namespace Host {

/// What a line of JSON says beside the value.
struct JsonSensor {
    std::string_view _scene; // left out where it is empty
    std::string_view _name;
    std::string_view _label;
    std::string_view _type;
};

/// One change as one line of JSON with its line end: time in wall-clock seconds, names, value as ValueForm says.
/// Bytes that are no UTF-8 become U+FFFD.
std::string jsonLine(double time, const JsonSensor& sensor, Ostrel::Field& field);

/// The value for people: numbers with `digits` significant digits, between blanks; of a sequence at first its length,
/// then no more elements than fit into about `limit` bytes. No control characters.
std::string valueText(Ostrel::Field& field, int digits, std::size_t limit);
} // namespace Host
