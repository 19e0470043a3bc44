#pragma once

#include "nodes/osc/packet/OscArguments.h"
#include "nodes/osc/packet/OscTime.h"
#include <string>
#include <vector>

namespace Trovio::Nodes {

/// Writes one message after another, in memory that is used again: after the first few, nothing is allocated.
/// Threads: one.
class OscWriter {
public:
    /// Begins a message. The address must not hold a zero byte.
    void begin(std::string_view address);

    void addInt32(std::int32_t number) { addBits32('i', static_cast<std::uint32_t>(number)); }
    void addNumber(std::int64_t number) { addBits64('h', static_cast<std::uint64_t>(number)); }
    void addNumber(float number);
    void addNumber(double number);
    void addBool(bool value) { addTag(value ? 'T' : 'F'); }
    /// An argument that is its tag and has no bytes.
    void addTag(char tag) { _tags += tag; }
    /// The text ends at its first zero byte.
    void addText(std::string_view text);
    /// Of less than 2^31 bytes.
    void addBlob(Bytes bytes);

    /// The finished message, valid until the next begin().
    Bytes finish();

private:
    void addBits32(char tag, std::uint32_t bits);
    void addBits64(char tag, std::uint64_t bits);

    std::string _tags;
    std::string _address;
    std::vector<std::uint8_t> _arguments;
    std::vector<std::uint8_t> _message;
};

void appendBigEndian32(std::vector<std::uint8_t>& bytes, std::uint32_t number);
void appendBigEndian64(std::vector<std::uint8_t>& bytes, std::uint64_t number);

} // namespace Trovio::Nodes
