#pragma once

#include "nodes/osc/address/OscAddressList.h"
#include "nodes/osc/packet/OscPacket.h"
#include <memory>

namespace Trovio {
class BasicOutSlot;
}

namespace Trovio::Nodes {

/// An address that messages are received for, and the out-slot that they go to. (What has an address is a method to
/// OSC.)
/// Threads: one thread delivers; the slot itself is for any thread.
class OscMethod {
public:
    virtual ~OscMethod() = default;
    virtual BasicOutSlot& getSlot() = 0;

    /// Pushes the message's value. False, and nothing is pushed, if its arguments do not make one.
    virtual bool deliver(const OscMessage& message) = 0;

    /// The tags that fit best: "fff", "(fff)*".
    virtual std::string getExpected() const = 0;

    static std::unique_ptr<OscMethod> create(const OscAddress& address);
};

} // namespace Trovio::Nodes
