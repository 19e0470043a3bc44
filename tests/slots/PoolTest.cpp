#include "tests/support/AllocationCount.h"
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

SmartPtr<Probe> acquired()
{
    SmartPtr<Probe> handle;
    handle.acquire();
    return handle;
}

} // namespace

template <>
Cache<Probe> Trovio::Cache<Probe>::the_{};
template <>
Cache<OtherProbe> Trovio::Cache<OtherProbe>::the_{};

TEST(Pool, LastFreedIsReusedFirstWithItsContents)
{
    const Probe* a = nullptr;
    const Probe* b = nullptr;
    {
        SmartPtr<Probe> first = acquired();
        a = first.get();
        SmartPtr<Probe> second;
        second->_content = 2; // writing through a null handle acquires
        b = second.get();
        first->_content = 1;
    } // frees the second, then the first
    const SmartPtr<Probe> next = acquired(), afterNext = acquired();
    EXPECT_EQ(next.get(), a);
    EXPECT_EQ(next.get()->_content, 1);
    EXPECT_EQ(afterNext.get(), b);
    EXPECT_EQ(Probe::_built, 2) << "nothing was made anew";
}

TEST(Pool, CopiesShareAndTheLastOneGivesBack)
{
    SmartPtr<Probe> first = acquired();
    const Probe* const object = first.get();
    SmartPtr<Probe> second(first), third;
    third = second;
    third = *&third; // itself
    first = {};
    first.acquire(); // another object
    second = SmartPtr<Probe>();
    EXPECT_NE(first.get(), object);
    EXPECT_NE(acquired().get(), object) << "third still holds it";
    third = first;
    EXPECT_EQ(acquired().get(), object);
    SmartPtr<Probe>().decrementReferenceCounter(); // a null handle has nothing to drop
}

TEST(Pool, HandleThatDroppedItsReferenceAcquiresAnew)
{
    SmartPtr<Probe> handle = acquired();
    const Probe* const object = handle.get();
    handle.decrementReferenceCounter();
    handle.acquire();
    EXPECT_EQ(handle.get(), object);
    EXPECT_NE(acquired().get(), object) << "it is held, once";
    handle = {};
    EXPECT_EQ(acquired().get(), object);
}

TEST(Pool, TakesBackWithoutMemory)
{
    std::vector<SmartPtr<Probe>> handles(200);
    std::vector<const Probe*> objects;
    for (auto& handle : handles) {
        handle.acquire();
        objects.push_back(handle.get());
    }
    const int built = Probe::_built;
    {
        const AllocationFailure failure(1, AllocationFailure::All);
        for (auto& handle : handles)
            handle = {};
        EXPECT_TRUE(failure.happened());
    }
    for (std::size_t i = handles.size(); i-- != 0;) {
        handles[i].acquire();
        EXPECT_EQ(handles[i].get(), objects[i]) << "last freed, first reused";
    }
    EXPECT_EQ(Probe::_built, built);
}

// In a process of its own: the pool is gone afterwards.
TEST(PoolDeathTest, EndsOnlyWhenEverythingCameBack)
{
    const auto end = [](bool held) {
        std::vector<SmartPtr<OtherProbe>> handles(200);
        for (auto& handle : handles)
            handle.acquire();
        {
            const AllocationFailure failure(1, AllocationFailure::All); // so that some of them wait
            for (auto& handle : handles)
                if (!held || &handle != &handles.back())
                    handle = {};
        }
        int result = 0;
        try {
            Cache<OtherProbe>::the_.~Cache();
        } catch (const std::exception&) {
            result = 1;
        }
        std::_Exit(result * 10 + (Probe::_built == (held ? 200 : 0)));
    };
    EXPECT_EXIT(end(true), ::testing::ExitedWithCode(11), "") << "refused, and freed nothing";
    EXPECT_EXIT(end(false), ::testing::ExitedWithCode(1), "") << "every object freed";
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
