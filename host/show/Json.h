#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {
class Field;
class FieldClass;
} // namespace Ostrel

namespace Host {

/// What a line of JSON says beside the value.
struct JsonSensor {
    std::string_view _scene; // left out where it is empty
    std::string_view _name;
    std::string_view _label;
    std::string_view _type;
};

/// When a change came, in wall-clock seconds.
struct JsonTimes {
    double _frame;
    std::optional<double> _stamp; // of the record behind the change; left out where there is none
};

/// One change as one line of JSON with its line end: times, names, value as ValueForm says.
/// Bytes that are no UTF-8 become U+FFFD.
std::string jsonLine(const JsonTimes& times, const JsonSensor& sensor, Ostrel::Field& field);

/// The line that stands for values that were dropped, as RunOutput wants it: how many in this gap, and so far.
std::string droppedAsJson(std::uint64_t dropped, std::uint64_t inAll);

/// The value alone, as it stands there, on one line.
std::string fieldText(Ostrel::Field& field);

/// Few: six significant digits, no sign before a zero, a time as its date, a matrix in rows. All: as many digits as
/// tell the number from every other one of its type, so that reading it gives the same number again.
enum class Digits { Few, All };

/// The value for people: numbers between blanks, the rows of a matrix between semicolons; of a sequence at first its
/// length, then no more elements than fit into about `limit` bytes. No control characters.
std::string valueText(Ostrel::Field& field, Digits digits, std::size_t limit);

/// The same for the value of a field of that class in the form that jsonLine() gives it, as another process has it.
std::string valueText(const nlohmann::json& value, const Ostrel::FieldClass& fieldClass, Digits digits,
                      std::size_t limit);
} // namespace Host
