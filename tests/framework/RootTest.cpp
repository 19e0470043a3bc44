#include "trovio/Root.h"
#include "tests/framework/TestNode.h"
#include <gtest/gtest.h>

using Trovio::Root;

namespace {

TEST(RootDeathTest, AccessBeforeInitEndsTheProcess)
{
    EXPECT_EXIT(Root::get(), ::testing::KilledBySignal(SIGABRT),
                "^FATAL: Accessed Trovio::Root that is not initialized!\n$");
}

TEST(Root, OpensAndClosesAsOftenAsAsked)
{
    TestNode::Events events;
    for (int round = 0; round < 2; ++round) {
        Root::init();
        Root::init();
        EXPECT_EQ(&Root::get(), &Root::the_);
        Root::get().addRoute("a", "b");
        auto branch = std::make_unique<Trovio::Namespace>();
        branch->addNamespace(std::make_unique<TestNode>("a", events));
        Root::get().addNamespace("Context", std::move(branch));
        Root::shutdown();
        Root::shutdown();
        EXPECT_EQ(std::exchange(events, {}), (TestNode::Events{"start a", "stop a", "~a"}));
    }
    Root::init();
    const auto info = Root::get().inspect();
    EXPECT_TRUE(info._children.empty() && info._routes.empty() && !info._dirty);
    Root::shutdown();
}

} // namespace
