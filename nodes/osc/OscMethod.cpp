#include "nodes/osc/OscMethod.h"

#include "nodes/osc/packet/OscFixedArgument.h"
#include "nodes/osc/packet/OscValue.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"

namespace Trovio::Nodes {

namespace {

template <class T>
class SlotPart final : public OscPart {
public:
    explicit SlotPart(const std::string& name) : _slot(name) {}

    BasicOutSlot* getSlot() override { return &_slot; }
    std::string getExpected() const override { return OscValue<T>::expected(); }

    OscFit take(OscArguments& arguments) override
    {
        return OscValue<T>::read(arguments, _record.getValue()) ? OscFit::Fits : OscFit::Differs;
    }

    void push(const Time& stamp) override
    {
        _record.setTimeStamp(stamp);
        _slot.push(_record);
    }

private:
    Data<T> _record;
    OutSlot<T> _slot;
};

class FixedPart final : public OscPart {
public:
    explicit FixedPart(OscFixedItem fixed) : _fixed(std::move(fixed)) {}

    std::string getExpected() const override { return std::string(1, _fixed._tag); }

    OscFit take(OscArguments& arguments) override
    {
        const auto argument = arguments.next();
        if (!argument)
            return OscFit::Differs;
        return isFixedOscValue(_fixed, *argument) ? OscFit::Fits : OscFit::Another;
    }

private:
    const OscFixedItem _fixed;
};

class SkippedPart final : public OscPart {
public:
    explicit SkippedPart(OscSkippedItem skipped) : _isRest(skipped._isRest) {}

    std::string getExpected() const override { return _isRest ? "_*" : "_"; }

    OscFit take(OscArguments& arguments) override
    {
        if (!_isRest)
            return arguments.next() ? OscFit::Fits : OscFit::Differs;
        while (arguments.next()) {
        }
        return OscFit::Fits;
    }

private:
    const bool _isRest;
};

std::unique_ptr<OscPart> makePart(const OscEntry& entry, const OscItem& item)
{
    std::unique_ptr<OscPart> part;
    if (const auto* const fixed = std::get_if<OscFixedItem>(&item))
        part = std::make_unique<FixedPart>(*fixed);
    else if (const auto* const skipped = std::get_if<OscSkippedItem>(&item))
        part = std::make_unique<SkippedPart>(*skipped);
    else if (const auto* const slot = std::get_if<OscSlotItem>(&item))
        withSlotType(slot->_typeName,
                     [&]<class T>(TypeTag<T>) { part = std::make_unique<SlotPart<T>>(entry.getLabel(*slot)); });
    return part;
}

} // namespace

OscMethod::OscMethod(const OscEntry& entry) : _title(entry._title)
{
    for (const OscItem& item : entry._items) {
        _parts.push_back(makePart(entry, item));
        if (BasicOutSlot* const slot = _parts.back()->getSlot())
            _slots.push_back(slot);
    }
}

OscFit OscMethod::read(const OscMessage& message)
{
    OscArguments arguments = message.getArguments();
    for (const auto& part : _parts)
        if (const OscFit fit = part->take(arguments); fit != OscFit::Fits)
            return fit;
    return arguments.atEnd() ? OscFit::Fits : OscFit::Differs;
}

OscFit OscMethod::deliver(const OscMessage& message)
{
    const OscFit fit = read(message);
    if (fit == OscFit::Fits)
        for (const auto& part : _parts)
            part->push(message._stamp);
    return fit;
}

std::string OscMethod::getExpected() const
{
    std::string expected;
    for (const auto& part : _parts)
        expected += part->getExpected();
    return expected;
}

} // namespace Trovio::Nodes
