#pragma once

#include "monitor/mcap/format/Format.h"

#include <bit>
#include <cstring>

namespace Monitor::Mcap {

/// Appends records to bytes that somebody else owns. A record's length is put in once its content stands.
class RecordBytes {
public:
    explicit RecordBytes(Bytes& bytes) : _bytes(bytes) {}

    void raw(ByteView bytes) { _bytes.insert(_bytes.end(), bytes.begin(), bytes.end()); }
    void raw(std::string_view text) { raw(asBytes(text)); }

    template <class Number>
    void number(Number value)
    {
        const std::size_t at = _bytes.size();
        _bytes.resize(at + sizeof value);
        put(at, value);
    }

    void text(std::string_view text)
    {
        number(static_cast<std::uint32_t>(text.size()));
        raw(text);
    }

    void texts(const Texts& texts);

    void open(Op op)
    {
        number(static_cast<std::uint8_t>(op));
        number(std::uint64_t{0});
        _content = _bytes.size();
    }
    void close() { put(_content - 8, static_cast<std::uint64_t>(_bytes.size() - _content)); }

    /// Overwrites a number that stands already.
    template <class Number>
    void put(std::size_t at, Number value)
    {
        static_assert(std::endian::native == std::endian::little, "numbers stand in memory as in the file");
        std::memcpy(_bytes.data() + at, &value, sizeof value);
    }

    std::size_t size() const { return _bytes.size(); }

    void schema(const Schema& schema);
    void channel(const Channel& channel);
    void message(const Message& message);
    void attachment(const Attachment& attachment);
    void metadata(const Metadata& metadata);
    void checkpoint(const Checkpoint& checkpoint);

private:
    Bytes& _bytes;
    std::size_t _content = 0; // where that of the open record begins
};

/// The CRC-32 of zlib, which the format prescribes.
std::uint32_t checksum(ByteView bytes, std::uint32_t before = 0);

/// The checksum of bytes with `first` followed by `length` bytes with `second`.
std::uint32_t joinedChecksum(std::uint32_t first, std::uint32_t second, std::uint64_t length);

} // namespace Monitor::Mcap
