#pragma once

#include "nodes/osc/address/OscEntry.h"
#include "nodes/osc/packet/OscPacket.h"
#include <functional>
#include <memory>

namespace Trovio {
class BasicOutSlot;
}

namespace Trovio::Nodes {

/// What becomes of a message.
enum class OscFit {
    Fits,
    Differs, // its arguments do not make the values
    Another, // it has other fixed arguments, and so is meant for another entry
};

/// Takes one item's arguments off a message.
/// Threads: one; the slot is for any thread.
class OscPart {
public:
    virtual ~OscPart() = default;
    virtual OscFit take(OscArguments& arguments) = 0;
    /// The tags that fit best: "fff", "(fff)*".
    virtual std::string getExpected() const = 0;

    /// Of a part that is a slot's value: hands on what was taken last.
    virtual void push(const Time&) {}
    virtual BasicOutSlot* getSlot() { return nullptr; }
};

/// A message as an entry of 'in' describes it, and the out-slots that its arguments go to. (What has an address is a
/// method to OSC.)
/// Threads: one thread delivers; the slots themselves are for any thread.
class OscMethod {
public:
    explicit OscMethod(const OscEntry& entry);

    /// Pushes the message's values, all of them or, unless it fits, none.
    OscFit deliver(const OscMessage& message);
    /// Whether it fits; pushes nothing.
    OscFit read(const OscMessage& message);

    /// "/wand/position", "/tracker i:3"
    const std::string& getTitle() const { return _title; }
    std::string getExpected() const;
    const std::vector<BasicOutSlot*>& getSlots() const { return _slots; }

private:
    const std::string _title;
    std::vector<std::unique_ptr<OscPart>> _parts;
    std::vector<BasicOutSlot*> _slots;
};

} // namespace Trovio::Nodes
