#include "scene/file/InitialValue.h"

#include "scene/file/FieldVisit.h"

#include <cmath>
#include <limits>

namespace Scenes {
namespace {

const TomlValue* take(const TomlValue& value, bool& to)
{
    const auto* flag = std::get_if<bool>(&value._data);
    if (flag == nullptr)
        return &value;
    to = *flag;
    return nullptr;
}

const TomlValue* take(const TomlValue& value, std::string& to)
{
    const auto* text = std::get_if<std::string>(&value._data);
    if (text == nullptr)
        return &value;
    to = *text;
    return nullptr;
}

const TomlValue* take(const TomlValue& value, std::int32_t& to)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const auto* whole = std::get_if<std::int64_t>(&value._data);
    if (whole == nullptr || *whole < Limits::min() || *whole > Limits::max())
        return &value;
    to = static_cast<std::int32_t>(*whole);
    return nullptr;
}

const TomlValue* take(const TomlValue& value, double& to)
{
    if (const auto* whole = std::get_if<std::int64_t>(&value._data))
        to = static_cast<double>(*whole);
    else if (const auto* number = std::get_if<double>(&value._data))
        to = *number;
    else
        return &value;
    return nullptr;
}

// A finite number too large for a float does not fit; inf and nan are taken as they stand.
const TomlValue* take(const TomlValue& value, float& to)
{
    double number = 0;
    if (take(value, number) != nullptr ||
        (std::isfinite(number) && std::abs(number) > std::numeric_limits<float>::max()))
        return &value;
    to = static_cast<float>(number);
    return nullptr;
}

// Exactly `count` numbers.
template <class Number>
const TomlValue* takeNumbers(const TomlValue& value, Number* to, std::size_t count)
{
    const auto* list = std::get_if<TomlValue::List>(&value._data);
    if (list == nullptr || list->size() != count)
        return &value;
    for (std::size_t i = 0; i < count; ++i)
        if (const TomlValue* wrong = take((*list)[i], to[i]))
            return wrong;
    return nullptr;
}

template <class Number, std::size_t count>
const TomlValue* take(const TomlValue& value, Ostrel::Vector<Number, count>& to)
{
    return takeNumbers(value, to.data(), count);
}

template <class Number, std::size_t order>
const TomlValue* take(const TomlValue& value, Ostrel::Matrix<Number, order>& to)
{
    std::array<Number, order * order> rows{};
    if (const TomlValue* wrong = takeNumbers(value, rows.data(), rows.size()))
        return wrong;
    for (std::size_t i = 0; i < rows.size(); ++i)
        to.data()[i % order * order + i / order] = rows[i];
    return nullptr;
}

const TomlValue* take(const TomlValue& value, Ostrel::Rotation& to)
{
    std::array<float, 4> q{};
    const TomlValue* wrong = takeNumbers(value, q.data(), q.size());
    if (wrong == nullptr)
        to.setQuaternion(q[0], q[1], q[2], q[3]);
    return wrong;
}

const TomlValue* take(const TomlValue& value, osg::ImagePtr&)
{
    return &value;
}

const TomlValue* take(const TomlValue& value, Ostrel::Node*&)
{
    return &value;
}

template <Multiple FieldClass>
const TomlValue* takeAll(const TomlValue& value, FieldClass& field)
{
    const auto* list = std::get_if<TomlValue::List>(&value._data);
    if (list == nullptr)
        return &value;
    field.values().clear();
    for (const TomlValue& part : *list) {
        typename FieldClass::Element element{};
        if (const TomlValue* wrong = take(part, element))
            return wrong;
        field.values().push_back(element);
    }
    return nullptr;
}
} // namespace

const TomlValue* setInitialValue(Ostrel::Field& field, const TomlValue& value)
{
    return visitField(field, [&value]<class FieldClass>(FieldClass& concrete) -> const TomlValue* {
        if constexpr (Multiple<FieldClass>)
            return takeAll(value, concrete);
        else
            return take(value, concrete.value());
    });
}
} // namespace Scenes
