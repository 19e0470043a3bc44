#include "scene/change/SameValue.h"

#include <algorithm>
#include <cmath>

namespace Scenes {
namespace {

struct Same {
    template <class T>
    bool operator()(const T& one, const T& other) const
    {
        return one == other;
    }
    bool operator()(double one, double other) const { return one == other || (std::isnan(one) && std::isnan(other)); }
    bool operator()(TomlValue::Date, TomlValue::Date) const { return true; }
    bool operator()(const TomlValue::List& one, const TomlValue::List& other) const
    {
        return std::ranges::equal(one, other, isSameValue);
    }
    bool operator()(const TomlValue::Table& one, const TomlValue::Table& other) const
    {
        return std::ranges::equal(one, other, [](const TomlEntry& a, const TomlEntry& b) {
            return a._key == b._key && isSameValue(a._value, b._value);
        });
    }
    template <class T, class Other>
    bool operator()(const T&, const Other&) const
    {
        return false;
    }
};
} // namespace

bool isSameValue(const TomlValue& one, const TomlValue& other)
{
    return std::visit(Same(), one._data, other._data);
}
} // namespace Scenes
