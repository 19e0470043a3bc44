#include "tests/load/ProbeModule.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <memory>

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

// Slots find out each other's type across modules that hide everything, and a vector goes home whoever lets go of it.
TEST(OnePool, TakesBackWhatAModuleSent)
{
    using Vector = Trovio::SharedVector<float>;
    void* const module = dlopen(MODULE_A, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(module) << dlerror();
    const std::unique_ptr<Trovio::BasicOutSlot> outSlot(entry<decltype(probeOutSlot)>(module, "probeOutSlot")());
    Trovio::InSlot<Vector> inSlot("in");
    outSlot->connect(&inSlot);
    auto* const typed = dynamic_cast<Trovio::OutSlot<Vector>*>(outSlot.get());
    ASSERT_TRUE(typed);
    Vector sent;
    sent->assign({1, 2, 3});
    typed->push(Trovio::Data<Vector>(sent));
    EXPECT_EQ(inSlot.pop().getValue(), sent);
    outSlot->disconnect(&inSlot);
}
