#include "trovio/Values.h"

#include <gtest/gtest.h>
#include <thread>

using namespace Trovio;

namespace {

// Pools of types that only these tests use, so that no other holder disturbs the count.
struct Probe {
    static inline int _built = 0;
    static inline bool _failing = false;
    Probe()
    {
        if (_failing)
            throw std::bad_alloc();
        ++_built;
    }
    ~Probe() { --_built; }
    int _content = 0;
};
struct OtherProbe : Probe {}; // whose pool is used in child processes only

template <class T>
const void* addressOf(const SmartPtr<T>& handle)
{
    return handle.get();
}

} // namespace

template <>
Cache<Probe> Trovio::Cache<Probe>::the_{};
template <>
Cache<OtherProbe> Trovio::Cache<OtherProbe>::the_{};

TEST(Pool, LastFreedIsReusedFirstWithItsContents)
{
    const void* a = nullptr;
    const void* b = nullptr;
    {
        SmartPtr<Probe> first;
        first.acquire();
        first->_content = 1;
        a = addressOf(first);
        SmartPtr<Probe> second;
        second->_content = 2; // writing through a null handle acquires
        b = addressOf(second);
        EXPECT_NE(a, b);
    } // frees the second, then the first
    SmartPtr<Probe> next;
    SmartPtr<Probe> afterNext;
    next.acquire();
    afterNext.acquire();
    EXPECT_EQ(addressOf(next), a);
    EXPECT_EQ(next->_content, 1);
    EXPECT_EQ(addressOf(afterNext), b);
    EXPECT_EQ(Probe::_built, 2) << "nothing was made anew";
}

TEST(Pool, CopiesShareAndTheLastOneGivesBack)
{
    SmartPtr<Probe> first;
    first.acquire();
    const void* const object = addressOf(first);
    SmartPtr<Probe> second(first);
    SmartPtr<Probe> third;
    third = second;
    third = *&third; // itself
    first = SmartPtr<Probe>();
    second = SmartPtr<Probe>();
    SmartPtr<Probe> other;
    other.acquire();
    EXPECT_NE(addressOf(other), object) << "third still holds it";
    third = other;
    SmartPtr<Probe> again;
    again.acquire();
    EXPECT_EQ(addressOf(again), object);
    SmartPtr<Probe>().decrementReferenceCounter(); // a null handle has nothing to drop
}

TEST(Pool, AcquiringThroughABoundHandleLetsGoOfTheOldObject)
{
    SmartPtr<Probe> handle;
    handle.acquire();
    const void* const object = addressOf(handle);
    SmartPtr<Probe> other(handle);
    handle.acquire();
    EXPECT_NE(addressOf(handle), object);
    other = handle;
    SmartPtr<Probe> again;
    again.acquire();
    EXPECT_EQ(addressOf(again), object);
}

// In a process of its own: the pool is gone afterwards.
TEST(PoolDeathTest, EndsOnlyWhenEverythingCameBack)
{
    const auto end = [](bool held) {
        SmartPtr<OtherProbe> handle;
        handle.acquire();
        if (!held)
            handle = SmartPtr<OtherProbe>();
        int result = 0;
        try {
            Cache<OtherProbe>::the_.~Cache();
        } catch (const std::exception&) {
            result = 1;
        }
        std::_Exit(result * 10 + Probe::_built);
    };
    EXPECT_EXIT(end(true), ::testing::ExitedWithCode(11), "") << "refused, and freed nothing";
    EXPECT_EXIT(end(false), ::testing::ExitedWithCode(0), "") << "every object freed";
}

TEST(PoolDeathTest, StaysLockedWhenMemoryRunsOut)
{
    const auto runOut = [] {
        Probe::_failing = true;
        try {
            SmartPtr<OtherProbe>().acquire();
        } catch (const std::bad_alloc&) {
            bool locked = false;
            std::thread([&locked] { locked = !Cache<OtherProbe>::the_.tryLock(); }).join();
            std::_Exit(locked ? 0 : 1);
        }
        std::_Exit(2);
    };
    EXPECT_EXIT(runOut(), ::testing::ExitedWithCode(0), "");
}
