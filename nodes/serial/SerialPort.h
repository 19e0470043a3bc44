#pragma once

#include "nodes/shared/FileDescriptor.h"
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Trovio::Nodes {

/// How a serial device speaks.
struct SerialFormat {
    unsigned _baud = 115200;
    char _bits = '8';   // '7' or '8'
    char _parity = 'N'; // 'N', 'E', 'O'
    char _stops = '1';  // '1' or '2'
    enum class Flow { None, RtsCts, XonXoff } _flow = Flow::None;
};

/// Bits a second that a device can be set to, in rising order.
std::span<const unsigned> baudRates();

/// A serial device, open for reading and writing, for this program alone. Nothing here waits.
/// Threads: one at a time.
class SerialPort {
public:
    /// Returns the problem, and it is closed then; empty if all went well.
    std::string open(const std::string& path, const SerialFormat& format);
    void close();
    bool isOpen() const { return _device.isOpen(); }

    /// To wait for.
    int getDescriptor() const { return _device.get(); }

    /// How many bytes came, 0 where none wait. Nothing if the device is gone: see getProblem().
    std::optional<std::size_t> read(std::span<char> bytes);
    /// How many bytes the device took, 0 where it takes none for now. Nothing if it is gone.
    std::optional<std::size_t> write(std::string_view bytes);

    /// Why the last read() or write() returned nothing.
    const std::string& getProblem() const { return _problem; }

private:
    std::optional<std::size_t> resultOf(std::ptrdiff_t count);

    FileDescriptor _device;
    std::string _problem;
};

} // namespace Trovio::Nodes
