#include "nodes/osc/packet/OscFixedArgument.h"

namespace Trovio::Nodes {

namespace {

template <class Number>
bool isNumber(Number fixed, const OscArgument& argument)
{
    switch (argument._tag) {
    case 'i':
        return static_cast<Number>(argument.asInt32()) == fixed;
    case 'h':
        return static_cast<Number>(argument.asInt64()) == fixed;
    case 'f':
        return argument.asFloat() == static_cast<float>(fixed);
    case 'd':
        return argument.asDouble() == static_cast<double>(fixed);
    default:
        return false;
    }
}

} // namespace

bool isFixedOscValue(const OscFixedItem& fixed, const OscArgument& argument)
{
    if (const auto* const whole = std::get_if<std::int64_t>(&fixed._value))
        return isNumber(*whole, argument);
    if (const auto* const real = std::get_if<double>(&fixed._value))
        return isNumber(*real, argument);
    if (const auto* const text = std::get_if<std::string>(&fixed._value))
        return (argument._tag == 's' || argument._tag == 'S') && argument.asText() == *text;
    return argument._tag == fixed._tag;
}

void writeFixedOscValue(OscWriter& writer, const OscFixedItem& fixed)
{
    if (const auto* const text = std::get_if<std::string>(&fixed._value))
        writer.addText(*text);
    else if (const auto* const whole = std::get_if<std::int64_t>(&fixed._value))
        fixed._tag == 'i' ? writer.addInt32(static_cast<std::int32_t>(*whole)) : writer.addNumber(*whole);
    else if (const auto* const real = std::get_if<double>(&fixed._value))
        fixed._tag == 'f' ? writer.addNumber(static_cast<float>(*real)) : writer.addNumber(*real);
    else
        writer.addTag(fixed._tag);
}

} // namespace Trovio::Nodes
