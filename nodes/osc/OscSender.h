#pragma once

#include "nodes/osc/address/OscEntry.h"
#include "nodes/osc/packet/OscWriter.h"
#include "trovio/Time.h"
#include <functional>
#include <memory>
#include <optional>

namespace Trovio {
class BasicInSlot;
class Counter;
} // namespace Trovio

namespace Trovio::Nodes {

/// When a message of several slots goes out, in the order of the setting's choices: once each of them has a new value,
/// or each frame, where those without a new one are as they were.
enum class Gathering { All, Frame };

/// Writes one item of a message.
/// Threads: any thread pushes into the slot; one thread does the rest.
class OscSource {
public:
    virtual ~OscSource() = default;
    virtual void write(OscWriter& writer) const = 0;

    /// Of one with a slot: takes the oldest waiting record, which is written from then on. False if none waits.
    virtual bool take() { return false; }
    virtual bool isWaiting() { return false; }
    virtual Time getStamp() const { return {}; } // of what was taken last
    virtual BasicInSlot* getSlot() { return nullptr; }
};

/// A message as an entry of 'out' describes it, and the in-slots whose records it carries.
/// Threads: any thread pushes into the slots; one thread does the rest.
class OscSender {
public:
    /// Seconds that a message waits, where each frame has one, for the slots that have no new value.
    static constexpr double MaxFrame = 0.05;

    /// How the node sends: records that may wait in each slot; what counts those that newer ones replaced before their
    /// message was complete; and what is called on the pushing thread after each record, under locks, so that it may
    /// only wake somebody.
    struct Manner {
        unsigned _capacity;
        Gathering _gathering;
        Counter& _replaced;
        std::function<void()> _arrived;
    };

    OscSender(const OscEntry& entry, const Manner& manner);

    const std::vector<BasicInSlot*>& getSlots() const { return _slots; }

    /// Writes the next message and returns its time stamp, the latest of those of its values. Nothing if none is
    /// complete by now, in seconds of the node's clock.
    std::optional<Time> take(OscWriter& writer, double now);

    /// When the message goes out that is not complete; nothing if it does not before more records come.
    std::optional<double> getDueTime() const;

private:
    /// A slot of the message.
    struct Value {
        OscSource* _source;
        bool _isNew = false; // since the last message
        bool _isKnown = false;
    };

    bool fill(double now);
    bool isEachKnown() const;
    bool isDue(double now) const;
    Value* findOvertaken();
    Time write(OscWriter& writer);

    const std::string _address;
    const Gathering _gathering;
    Counter& _replaced;
    std::vector<std::unique_ptr<OscSource>> _sources;
    std::vector<Value> _values;
    std::vector<BasicInSlot*> _slots;
    std::optional<double> _newSince; // when the first new value was taken
};

} // namespace Trovio::Nodes
