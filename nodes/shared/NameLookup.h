#pragma once

#include "nodes/shared/SocketAddress.h"
#include <memory>

namespace Trovio::Nodes {

/// Finds the address of a host by its name, without keeping its thread waiting. One lookup at a time.
/// Threads: one at a time.
class NameLookup {
public:
    virtual ~NameLookup() = default;

    virtual void begin(const std::string& host, std::uint16_t port) = 0;

    struct Answer {
        std::optional<SocketAddress> _address;
        std::string _problem; // why there is none
    };
    /// Empty while the answer is pending.
    virtual std::optional<Answer> poll() = 0;

    /// Gives the lookup up. Never waits.
    virtual void cancel() = 0;

    /// Asks the system, which may take many seconds to learn that nobody knows.
    static std::unique_ptr<NameLookup> system();
};

} // namespace Trovio::Nodes
