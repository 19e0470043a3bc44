#pragma once

#include "nodes/filters/ElementWise.h"
#include "nodes/filters/convert/Parts.h"
#include "trovio/BufferedInSlot.h"
#include <optional>

namespace Trovio::Nodes {

/// One in-slot of a Join, and the record at its head, once that was taken out to be looked at.
/// Threads: any thread uses the slot; one thread the rest.
class JoinPart {
public:
    virtual ~JoinPart() = default;
    virtual BasicInSlot& getSlot() = 0;

    /// Takes the next record to the head, unless there is one. False if none waits.
    virtual bool fetch() = 0;
    // Of the head:
    virtual bool isUsable() const = 0; // a value that is one
    virtual double stamp() const = 0;  // seconds
    virtual bool isOvertaken() = 0;    // the record behind it is older: the source's clock was set back

    /// The head becomes the part of the result; or nothing becomes of it. Then there is none.
    virtual void use() = 0;
    virtual void discard() = 0;
    virtual bool wasUsed() const = 0;
};

template <class P>
class TypedJoinPart final : public JoinPart {
public:
    TypedJoinPart(const std::string& name, unsigned capacity) : _slot(name, capacity) {}

    BasicInSlot& getSlot() override { return _slot; }
    bool fetch() override
    {
        if (!_head && !_slot.empty())
            _head = _slot.pop();
        return _head.has_value();
    }
    bool isUsable() const override { return Nodes::isUsable(_head->getValue()); }
    double stamp() const override { return _head->getTimeStamp().getSeconds(); }
    bool isOvertaken() override { return !_slot.empty() && _slot.top().getTimeStamp().getSeconds() < stamp(); }

    void use() override
    {
        _used = _head->getValue();
        _head.reset();
    }
    void discard() override { _head.reset(); }
    bool wasUsed() const override { return _used.has_value(); }

    /// What was used last.
    const P& value() const { return *_used; }

private:
    BufferedInSlot<P> _slot;
    std::optional<Data<P>> _head;
    std::optional<P> _used;
};

} // namespace Trovio::Nodes
