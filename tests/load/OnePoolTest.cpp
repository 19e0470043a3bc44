#include "tests/load/ProbeModule.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

constexpr const char* modules[] = {MODULE_A, MODULE_B};

template <class Function>
Function* entry(void* module, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(module, name));
}

} // namespace

// Program, library and modules each look for themselves; a second pool anywhere would take in what another gave out.
TEST(OnePool, IsSeenByProgramLibraryAndModules)
{
    const auto seen = viewPools();
    ASSERT_EQ(seen.size(), 21U);
    for (const PoolView& view : seen)
        EXPECT_EQ(view._here, view._inLibrary);
    for (const char* const path : modules) {
        void* const module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        ASSERT_TRUE(module) << dlerror();
        std::vector<PoolView> seenByModule;
        entry<decltype(probePools)>(module, "probePools")(seenByModule);
        EXPECT_EQ(seenByModule, seen) << path;
        dlclose(module);
    }
}
