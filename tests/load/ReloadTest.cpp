#include "tests/load/Mapped.h"
#include "tests/support/Pace.h"

#include <cerrno>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// What has to be gone: the library, what it stands on, and what stood on it.
constexpr const char* files[] = {"libostrelSensorManager.so",        "libTrovio.so", "libostrelBase.so",
                                 "libostrelDirectSensorNodePool.so", "libmerid.so",  "libosgBase.so",
                                 "trovio-node-Generator.so",         MODULE_A};

bool isUnmapped(void* address)
{
    const auto page = reinterpret_cast<std::uintptr_t>(address) & ~(static_cast<std::uintptr_t>(getpagesize()) - 1);
    unsigned char resident = 0;
    return mincore(reinterpret_cast<void*>(page), 1, &resident) == -1 && errno == ENOMEM;
}

void* find(void* library, const char* symbol)
{
    void* const address = dlsym(library, symbol);
    EXPECT_TRUE(address) << dlerror();
    return address;
}

} // namespace

// OSTREL_ROUNDS: how often.
TEST(Reload, LeavesNothingBehindAndComesBack)
{
    const long rounds = fromEnvironment("OSTREL_ROUNDS", 10);
    for (long round = 1; round <= rounds && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        void* const library = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_TRUE(library) << dlerror();
        void* const module = dlopen(MODULE_A, RTLD_NOW | RTLD_LOCAL);
        ASSERT_TRUE(module) << dlerror();
        void* const code = find(library, "_ZN6Ostrel17initSensorManagerEv");
        void* const pool = find(library, "_ZN6Trovio5CacheINS_5ImageEE4the_E");
        void* const use = find(module, "probeUse");
        ASSERT_TRUE(code && pool && use);
        EXPECT_STREQ(reinterpret_cast<const char* (*)()>(use)(), nullptr);
        EXPECT_FALSE(isMapped("trovio-node-Generator.so")) << "closed with the framework";

        EXPECT_EQ(dlclose(module), 0);
        EXPECT_TRUE(isUnmapped(use));
        EXPECT_FALSE(isUnmapped(code)) << "still held open";
        EXPECT_EQ(dlclose(library), 0);
        EXPECT_TRUE(isUnmapped(code));
        EXPECT_TRUE(isUnmapped(pool));
        for (const char* const file : files)
            EXPECT_FALSE(isMapped(file)) << file;
    }
}
