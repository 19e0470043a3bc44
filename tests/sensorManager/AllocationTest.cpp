#include "BridgeFixture.h"

#include "sensorManager/FieldTypes.h"
#include "tests/support/AllocationCount.h"

namespace {

using Trovio::BasicInSlot;

template <class FieldT>
concept Multiple = requires(FieldT field)
{
    field.values();
};

/// Every type that sends, but strings, goes out of a field, through a route and into another field.
class AllocationRoad : public Bridge {
protected:
    AllocationRoad()
    {
        addLabel(*_handler, "out/*", "in/*");
        for (const FieldClass& type : FieldClass::all())
            withFieldType(type.code(), [&]<class Row>(Row) { addPair<typename Row::FieldType>(type.name()); });
    }

    template <class FieldT>
    void addPair(const std::string& type)
    {
        if (type.ends_with("Image") || type.ends_with("String"))
            return;
        DirectSensor& out = add(type, "out/" + type, true);
        if constexpr (Multiple<FieldT>)
            field<FieldT>(out).values().resize(100);
        _pairs.emplace_back(&out, &add(type, "in/" + type, false, 4));
    }

    std::vector<std::pair<DirectSensor*, DirectSensor*>> _pairs;
};

TEST_F(AllocationRoad, TakesNoMemoryOnceItWasWalked)
{
    ASSERT_EQ(_pairs.size(), 36U);
    for (const auto& [out, in] : _pairs) {
        const auto frame = [&out = *out, &in = *in] {
            notify(out, 1.0);
            notify(in, 1.0);
        };
        const std::string& type = out->getField()->getTypeName();
        const unsigned first = type.starts_with("SF") ? 0 : 8; // frames, until the buffer has been through all vectors
        for (unsigned i = 0; i < first; ++i)
            frame();
        const AllocationCount count;
        for (int i = 0; i < 100; ++i)
            frame();
        EXPECT_EQ(count.since(), 0U) << type;
        EXPECT_EQ(dynamic_cast<BasicInSlot&>(*_handler->getSlot(in)).getCounts().taken, first + 100) << type;
    }
}

} // namespace
