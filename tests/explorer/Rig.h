#pragma once

#include "Scenarios.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

namespace Explorer {

/// A number that is copied in two steps, so that a copy without lock shows.
class Halves {
public:
    Halves() = default;
    explicit Halves(long number) : _first(number), _second(number) {}
    Halves(const Halves& other) { *this = other; }
    Halves& operator=(const Halves& other)
    {
        _first = other._first;
        Scheduler::step("copy", this);
        _second = other._second;
        return *this;
    }

    long number() const
    {
        expect(_first == _second, "a value was read while it was written");
        return _first;
    }

private:
    long _first = 0;
    long _second = 0;
};

using In = Trovio::InSlot<Halves>;
using Ring = Trovio::BufferedInSlot<Halves>;
using Out = Trovio::OutSlot<Halves>;

template <class SlotT>
void push(SlotT& slot, long number)
{
    slot.push(Trovio::Data<Halves>(Halves(number), Trovio::Time(0)));
}

inline long pop(In& slot)
{
    return slot.pop().getValue().number();
}

/// False instead of an exception, which must not be in the air when another fibre runs.
bool popUnlessInterrupted(In& slot, long& number);
bool topIsInterrupted(In& slot);
/// False where nothing was taken, also for an interrupt.
bool tryPopUnlessInterrupted(In& slot);

/// What is left in a slot, after all threads have ended.
std::vector<long> drain(In& slot);

/// Every record that the slot was given is accounted for: so many were taken, and as many wait as are said to.
/// Drains the slot.
void expectAccounts(In& slot, std::uint64_t stored, std::uint64_t taken);

/// Both sides of the pair say the same, and as often: connected, until the last of equally many disconnects.
/// Ends unconnected. Only for slots that have no other peers.
void expectAgreement(Out& out, In& in, int least, int most);

} // namespace Explorer

template <>
struct Trovio::TypeName<Explorer::Halves> {
    static std::string getName() { return "Halves"; }
};
