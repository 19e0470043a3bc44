#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Trovio::Nodes {

/// Puts lines together from bytes as they come. A line ends with LF, CR or both; empty and blank ones are
/// passed over.
/// Threads: one at a time.
class LineReader {
public:
    static constexpr std::size_t MaxLine = 4096; // bytes, without the end

    /// Nothing stands for a line that was too long, whose bytes are not kept.
    using Visit = std::function<void(std::optional<std::string_view> line)>;

    LineReader() { _line.reserve(MaxLine); }

    /// Calls visit for each line that ends in these bytes.
    void add(std::span<const char> bytes, const Visit& visit);

    /// Begins anew. skipsFirst: what comes up to the first end is passed over, as it may be the rest of a line.
    void restart(bool skipsFirst);

private:
    void end(const Visit& visit);

    std::string _line;
    bool _isTooLong = false;
    bool _skips = false;
};

} // namespace Trovio::Nodes
