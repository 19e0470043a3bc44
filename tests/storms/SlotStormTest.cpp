#include "Numbered.h"
#include "PoolCheck.h"
#include "StormLength.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <thread>

using namespace Trovio;

namespace {

/// Two producers push while two threads make, wire, read, interrupt, unwire and destroy slots of their own, and a
/// reader sleeps on a ring that is connected all along.
template <class T>
class Storm {
public:
    static constexpr std::size_t Pairs = 2;

    explicit Storm(const StormLength& length) : _length(length)
    {
        for (auto& out : _outs)
            out.connect(&_ring);
        _reader = std::thread([this] { readRing(); });
        for (std::size_t i = 0; i < Pairs; ++i) {
            _producers[i] = std::thread([this, i] { produce(i); });
            _visitors[i] = std::thread([this, i] { visit(i); });
        }
    }

    void finish()
    {
        for (auto& visitor : _visitors)
            visitor.join();
        _done = true;
        for (auto& producer : _producers)
            producer.join();
        _ring.interrupt(); // after the last record: the reader either takes it or leaves it waiting
        _reader.join();
        const InSlotCounts counts = _ring.getCounts();
        std::printf("%s: %d changes, %llu records sent, %llu taken\n", _ring.getTypeName().c_str(), _changes.load(),
                    static_cast<unsigned long long>(counts.stored), static_cast<unsigned long long>(_popped));
        EXPECT_EQ(counts.stored, _outs[0].getWritten() + _outs[1].getWritten() + _fromNewSlots);
        EXPECT_EQ(counts.taken, _popped);
        EXPECT_GT(_popped, 0U);
        EXPECT_GE(counts.stored, StormLength::records());
        endSlot(_ring);
        EXPECT_FALSE(_outs[0].isActive() || _outs[1].isActive());
    }

private:
    Data<T> next(std::size_t source)
    {
        return Data<T>(Numbered<T>::make(++_numbers[source] * Sources + static_cast<long>(source)), Time(0));
    }

    void produce(std::size_t source)
    {
        for (; !_done || _outs[source].getWritten() * Pairs < StormLength::records(); std::this_thread::yield())
            _outs[source].push(next(source));
    }

    /// Each source's numbers rise; a record is never one that nobody sent.
    void readRing()
    {
        for (std::map<long, long> last;;) {
            try {
                const long number = Numbered<T>::read(_ring.pop().getValue());
                ASSERT_GT(number, 0);
                EXPECT_GT(number, std::exchange(last[number % Sources], number));
                ++_popped;
            } catch (const InterruptedException&) {
                if (_done)
                    return;
            }
        }
    }

    void visit(std::size_t visitor)
    {
        std::minstd_rand random(static_cast<unsigned>(visitor + 1));
        std::vector<std::unique_ptr<InSlot<T>>> slots;
        int changes = 0;
        while (!_length.isOver(changes)) {
            if (slots.empty() || (slots.size() < 4 && random() % 8 == 0)) {
                if (const auto size = static_cast<unsigned>(random() % 6); size == 0)
                    slots.push_back(std::make_unique<InSlot<T>>("single"));
                else
                    slots.push_back(std::make_unique<BufferedInSlot<T>>("ring", size));
            }
            changes += act(*slots[random() % slots.size()], visitor, random());
            if (random() % 16 == 0) {
                endSlot(*slots.back());
                slots.pop_back();
            }
        }
        for (auto& slot : slots)
            endSlot(*slot);
        _changes += changes;
    }

    /// Whether it surely changed something: a disconnection may have met no connection, a read nothing to take.
    bool act(InSlot<T>& slot, std::size_t visitor, unsigned long choice)
    {
        OutSlot<T>& out = _outs[choice / 16 % Pairs];
        switch (choice % 7) {
        case 0:
            choice / 8 % 2 == 0 ? slot.connect(&out) : out.connect(&slot);
            return true;
        case 1:
            choice / 8 % 2 == 0 ? slot.disconnect(&out) : out.disconnect(&slot);
            return false;
        case 2:
            slot.interrupt();
            return true;
        case 3:
            _ring.interrupt();
            return true;
        case 4:
            pushFromNewSlot(slot, Pairs + visitor);
            return true;
        default:
            return read(slot);
        }
    }

    void pushFromNewSlot(InSlot<T>& slot, std::size_t source)
    {
        OutSlot<T> out("new");
        out.connect(&_ring);
        out.push(next(source));
        slot.connect(&out);
        out.push(next(source));
        out.disconnect(&slot);
        _ring.disconnect(&out);
        EXPECT_FALSE(out.isActive());
        _fromNewSlots += out.getWritten();
    }

    /// Nobody else reads this slot, so that what is not empty now stays so.
    /// Whether there was anything: a record or an interrupt.
    static bool read(InSlot<T>& slot)
    {
        if (slot.empty())
            return false;
        try {
            EXPECT_GT(Numbered<T>::read(slot.top().getValue()), 0);
            EXPECT_GT(Numbered<T>::read(slot.pop().getValue()), 0);
        } catch (const InterruptedException&) {
        }
        return true;
    }

    /// As many records as are said to wait can be taken.
    void endSlot(InSlot<T>& slot)
    {
        while (slot.isActive())
            for (auto& out : _outs)
                out.disconnect(&slot);
        const InSlotCounts counts = slot.getCounts();
        EXPECT_EQ(counts.stored, counts.overwritten + counts.taken + counts.waiting);
        for (std::uint64_t i = 0; i <= counts.waiting + 1; ++i) // an interrupt may stand in the way of one
            read(slot);
        EXPECT_TRUE(slot.empty());
        EXPECT_EQ(slot.getCounts().taken, counts.taken + counts.waiting);
    }

    static constexpr long Sources = 2 * Pairs; // producers and visitors

    const StormLength& _length;
    std::array<OutSlot<T>, Pairs> _outs{OutSlot<T>("a"), OutSlot<T>("b")};
    BufferedInSlot<T> _ring{"ring", 16};
    std::array<long, Sources> _numbers{}; // each used by one thread
    std::atomic<std::uint64_t> _fromNewSlots{0};
    std::atomic<int> _changes{0};
    std::uint64_t _popped = 0; // the reader's, until it has ended
    std::atomic<bool> _done{false};
    std::array<std::thread, Pairs> _producers, _visitors;
    std::thread _reader;
};

} // namespace

TEST(SlotStorm, SlotsOfFourKindsComeAndGoUnderTraffic)
{
    {
        const StormLength length(4 * Storm<long>::Pairs);
        Storm<long> numbers(length);
        Storm<std::string> texts(length);
        Storm<SharedVector<long>> vectors(length);
        Storm<SharedImage> images(length);
        numbers.finish();
        texts.finish();
        vectors.finish();
        images.finish();
    }
    EXPECT_TRUE(poolIsWhole<std::vector<long>>());
    EXPECT_TRUE(poolIsWhole<Image>());
}
