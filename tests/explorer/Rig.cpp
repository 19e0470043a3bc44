#include "Rig.h"
#include "trovio/TryPop.h"

namespace Explorer {

bool popUnlessInterrupted(In& slot, long& number)
{
    try {
        number = pop(slot);
        return true;
    } catch (const Trovio::InterruptedException&) {
        return false;
    }
}

bool topIsInterrupted(In& slot)
{
    try {
        slot.top().getValue().number();
        return false;
    } catch (const Trovio::InterruptedException&) {
        return true;
    }
}

bool tryPopUnlessInterrupted(In& slot)
{
    try {
        return Trovio::tryPop<Halves>(slot, [](const auto& record) { record.getValue().number(); });
    } catch (const Trovio::InterruptedException&) {
        return false;
    }
}

std::vector<long> drain(In& slot)
{
    std::vector<long> left;
    for (long number = 0; !slot.empty();)
        if (popUnlessInterrupted(slot, number))
            left.push_back(number);
    return left;
}

void expectAccounts(In& slot, std::uint64_t stored, std::uint64_t taken)
{
    const Trovio::InSlotCounts counts = slot.getCounts();
    expect(counts.stored == stored, "a record was lost or invented on its way into the slot");
    expect(counts.taken == taken, "the slot counts other takers than there were");
    expect(counts.stored == counts.overwritten + counts.taken + counts.waiting, "the counts do not add up");
    expect(drain(slot).size() == counts.waiting, "other records wait than are counted");
}

void expectAgreement(Out& out, In& in, int least, int most)
{
    int connections = 0;
    for (; out.isActive() || in.isActive(); ++connections) {
        expect(out.isActive() && in.isActive(), "one side believes in the connection, the other does not");
        const std::uint64_t before = in.getCounts().stored;
        push(out, 0);
        expect(in.getCounts().stored == before + 1, "a connected slot does not get its record exactly once");
        expect(connections < most, "more connections than were made");
        connections % 2 == 0 ? out.disconnect(&in) : in.disconnect(&out);
    }
    expect(connections >= least, "a connection was lost");
    const std::uint64_t before = in.getCounts().stored;
    push(out, 0);
    expect(in.getCounts().stored == before, "a slot gets records after the last disconnect");
}

} // namespace Explorer
