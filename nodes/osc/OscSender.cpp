#include "nodes/osc/OscSender.h"

#include "nodes/osc/packet/OscFixedArgument.h"
#include "nodes/osc/packet/OscValue.h"
#include "nodes/shared/SendQueue.h"
#include "trovio/Node.h"
#include "trovio/SlotTypes.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

template <class T>
class SlotSource final : public OscSource {
public:
    SlotSource(const std::string& label, const OscSender::Manner& manner)
        : _queue(label, manner._capacity, manner._arrived)
    {
    }

    BasicInSlot* getSlot() override { return &_queue.getSlot(); }
    bool isWaiting() override { return _queue.isWaiting(); }
    Time getStamp() const override { return _record.getTimeStamp(); }
    void write(OscWriter& writer) const override { OscValue<T>::write(writer, _record.getValue()); }

    bool take() override
    {
        auto record = _queue.take();
        if (record)
            _record = std::move(*record);
        return record.has_value();
    }

private:
    Data<T> _record;
    SendQueue<T> _queue;
};

class FixedSource final : public OscSource {
public:
    explicit FixedSource(OscFixedItem fixed) : _fixed(std::move(fixed)) {}
    void write(OscWriter& writer) const override { writeFixedOscValue(writer, _fixed); }

private:
    const OscFixedItem _fixed;
};

std::unique_ptr<OscSource> makeSource(const OscEntry& entry, const OscItem& item, const OscSender::Manner& manner)
{
    std::unique_ptr<OscSource> source;
    if (const auto* const fixed = std::get_if<OscFixedItem>(&item))
        source = std::make_unique<FixedSource>(*fixed);
    else if (const auto* const slot = std::get_if<OscSlotItem>(&item))
        withSlotType(slot->_typeName, [&]<class T>(TypeTag<T>) {
            source = std::make_unique<SlotSource<T>>(entry.getLabel(*slot), manner);
        });
    return source;
}

} // namespace

OscSender::OscSender(const OscEntry& entry, const Manner& manner)
    : _address(entry._address), _gathering(manner._gathering), _replaced(manner._replaced)
{
    for (const OscItem& item : entry._items) {
        _sources.push_back(makeSource(entry, item, manner));
        if (BasicInSlot* const slot = _sources.back()->getSlot()) {
            _values.push_back({_sources.back().get()});
            _slots.push_back(slot);
        }
    }
}

std::optional<Time> OscSender::take(OscWriter& writer, double now)
{
    while (!fill(now)) {
        Value* const overtaken = findOvertaken();
        if (!overtaken)
            return isDue(now) ? std::optional(write(writer)) : std::nullopt;
        // What came before the further record is seen only now; if nothing did, a frame has passed without the others.
        if (fill(now))
            break;
        if (_gathering == Gathering::Frame && isEachKnown())
            break;
        overtaken->_source->take();
        _replaced.add();
    }
    return write(writer);
}

/// Takes a record for each value that is not new. True if all are.
bool OscSender::fill(double now)
{
    bool isComplete = true;
    for (Value& value : _values) {
        if (!value._isNew && value._source->take()) {
            value._isNew = value._isKnown = true;
            _newSince = _newSince.value_or(now);
        }
        isComplete = isComplete && value._isNew;
    }
    return isComplete;
}

bool OscSender::isEachKnown() const
{
    return std::all_of(_values.begin(), _values.end(), [](const Value& value) { return value._isKnown; });
}

/// A new value behind which another one waits already.
OscSender::Value* OscSender::findOvertaken()
{
    const auto found = std::find_if(_values.begin(), _values.end(),
                                    [](const Value& value) { return value._isNew && value._source->isWaiting(); });
    return found == _values.end() ? nullptr : &*found;
}

std::optional<double> OscSender::getDueTime() const
{
    const bool isWaiting = _gathering == Gathering::Frame && _newSince && isEachKnown();
    return isWaiting ? std::optional(*_newSince + MaxFrame) : std::nullopt;
}

bool OscSender::isDue(double now) const
{
    const auto time = getDueTime();
    return time && *time <= now;
}

Time OscSender::write(OscWriter& writer)
{
    writer.begin(_address);
    for (const auto& source : _sources)
        source->write(writer);
    std::optional<Time> latest;
    for (Value& value : _values) {
        const Time stamp = value._source->getStamp();
        if (value._isNew && (!latest || stamp.getSeconds() > latest->getSeconds()))
            latest = stamp;
        value._isNew = false;
    }
    _newSince.reset();
    return latest.value_or(Time());
}

} // namespace Trovio::Nodes
