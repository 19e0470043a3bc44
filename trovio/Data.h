#pragma once

#include "trovio/BasicData.h"
#include <type_traits>

namespace Trovio {

/// A record: one value and the time at which it was produced. A plain value; a shared value is copied by handle.
template <class T>
class Data : public BasicData {
public:
    using Value = T;

    /// Time stamp 0 and the default value of T.
    Data() = default;

    /// Stamped with the current time.
    explicit Data(const T& value) : _value(value) { setTimeStamp(); }

    Data(const T& value, const Time& time) : _value(value) { setTimeStamp(time); }

    /// Becomes a copy. Where the value cannot be copied, the record stays as it was, with its own time stamp.
    void assign(const Data& other) noexcept(std::is_nothrow_copy_assignable_v<T>)
    {
        if constexpr (std::is_nothrow_copy_assignable_v<T>) {
            *this = other;
        } else {
            _value = other._value;
            BasicData::operator=(other);
        }
    }

    const T& getValue() const { return _value; }
    T& getValue() { return _value; }
    void setValue(const T& value) { _value = value; }

    using BasicData::setTimeStamp;

private:
    T _value{};
};

} // namespace Trovio
