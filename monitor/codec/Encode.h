#pragma once

#include "monitor/codec/Wire.h"
#include "trovio/Data.h"

namespace Monitor {

/// Replaces `out` by the record as a message; its memory is used again. The time stamp stands in images only.
/// Throws std::bad_alloc, and std::length_error for what no message can hold (4 GiB of text).
template <class T>
void encode(const Trovio::Data<T>& record, Bytes& out)
{
    CdrWriter writer(out);
    Wire<T>::put(writer, record.getValue(), record.getTimeStamp());
}

/// Reads a message, of whatever origin. False with what is wrong and where; the value is of no use then. Bytes behind
/// the value are allowed. A handle is bound to an object of its own.
template <class T>
bool decode(std::span<const std::byte> message, T& value, std::string& problem)
{
    CdrReader reader(message);
    if (!reader.hasFailed())
        Wire<T>::get(reader, value);
    problem = reader.problem();
    return !reader.hasFailed();
}

} // namespace Monitor
