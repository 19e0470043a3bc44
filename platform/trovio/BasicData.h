#pragma once

#include "trovio/Time.h"

namespace Trovio {

/// The part of a record that does not depend on its value type. Not polymorphic: a record is a plain value.
class BasicData {
public:
    const Time& getTimeStamp() const { return _timeStamp; }
    void setTimeStamp(const Time& time) { _timeStamp = time; }

    /// Stamps the record with the current time.
    void setTimeStamp() { _timeStamp = Time::getCurrentTime(); }

protected:
    BasicData() = default;
    ~BasicData() = default;
    BasicData(const BasicData&) = default;
    BasicData& operator=(const BasicData&) = default;

private:
    Time _timeStamp; // when the value was produced, as its producer says
};

} // namespace Trovio
