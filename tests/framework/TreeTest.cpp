#include "tests/framework/TestNode.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include <gtest/gtest.h>
#include <thread>

using Trovio::Namespace;
using Trovio::Root;

namespace {

class Tree : public ::testing::Test {
protected:
    Tree() { Root::init(); }
    ~Tree() override { Root::shutdown(); }

    std::unique_ptr<TestNode> make(const std::string& name) { return std::make_unique<TestNode>(name, _events); }

    TestNode::Events takeEvents() { return std::exchange(_events, {}); }

    Trovio::InSlot<float> _in{"in"};
    Trovio::OutSlot<float> _out{"out"};
    Namespace& _root = Root::the_;
    TestNode::Events _events;
};

using Events = TestNode::Events;

TEST_F(Tree, TakenLabelsGetTheLowestFreeNumber)
{
    for (const char* expected : {"Context", "Context2", "Context3"})
        EXPECT_EQ(_root.addNamespace("Context", std::make_unique<Namespace>()), expected);
    _root.removeNamespace("Context2");
    EXPECT_EQ(_root.addNamespace("Context", std::make_unique<Namespace>()), "Context2");
    EXPECT_EQ(_root.addNamespace("Context", std::make_unique<Namespace>()), "Context4");

    EXPECT_EQ(_root.addNamespace(make("a")), "Test");
    EXPECT_EQ(_root.addNamespace(make("b")), "Test2");
    auto named = make("c");
    named->setFieldValues("label='my node'");
    EXPECT_EQ(_root.addNamespace(std::move(named)), "my node");
}

TEST_F(Tree, ListsEachSlotByWhatItIsCalledAndWhereItStands)
{
    Trovio::InSlot<float> tap("tap");
    auto box = std::make_unique<Namespace>(), tools = std::make_unique<Namespace>();
    auto node = make("node");
    node->addOutSlot("out", &_out);
    box->addInSlot("in", &_in);
    box->addNamespace("inner", std::move(node));
    box->addExternalRoute("inner/out", "renamed");
    box->addExternalRoute("inner/out", "{NamespaceLabel}/{SlotLabel}");
    tools->addInSlot("renamed", &tap);
    tools->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    _root.addNamespace("box", std::move(box));
    _root.addNamespace("@tools", std::move(tools));
    _out.push(Trovio::Data<float>(1));
    std::multimap<std::string, std::string> homes;
    for (const Trovio::SlotInfo& slot : Root::listSlots()) {
        homes.emplace(slot._label, slot._home);
        EXPECT_EQ(slot._out ? slot._out->_written : slot._in->_counts.stored + 1, 1U) << slot._home;
    }
    EXPECT_EQ(homes, (std::multimap<std::string, std::string>{
                         {"", "box/in"}, {"box/inner/out", "box/inner/out"}, {"renamed", "box/inner/out"}}));
    const auto nodes = Root::listNodes();
    ASSERT_EQ(nodes.size(), 1U);
    EXPECT_EQ(nodes.at("box/inner")._typeName, "Test");
    _root.removeNamespace("@tools");
    _root.removeNamespace("box");
}

TEST_F(Tree, UnknownAndUnusableNamespacesAreRefused)
{
    EXPECT_EQ(_root.getNamespace("nobody"), nullptr);
    EXPECT_THROW(_root.removeNamespace("nobody"), Trovio::InvalidNamespaceException);
    EXPECT_THROW(_root.addNamespace("x", nullptr), Trovio::InvalidNamespaceException);
    EXPECT_THROW(_root.addNamespace("", std::make_unique<Namespace>()), Trovio::InvalidNamespaceException);
    EXPECT_THROW(_root.addNamespace(std::string(1025, 'x'), std::make_unique<Namespace>()),
                 Trovio::InvalidNamespaceException);
    EXPECT_THROW(_root.addNamespace(std::unique_ptr<Trovio::Node>()), Trovio::InvalidNodeException);
    EXPECT_THROW(_root.setFieldValues("x=1"), Trovio::InvalidFieldException);
    EXPECT_NO_THROW(_root.setFieldValues(" "));
    EXPECT_THROW(make("a")->setFieldValues("label=@tool"), Trovio::InvalidFieldException);
    EXPECT_TRUE(_root.inspect()._children.empty());
}

TEST_F(Tree, NodesRunExactlyWhileTheyStandUnderTheRoot)
{
    auto branch = std::make_unique<Namespace>();
    branch->addNamespace(make("a"));
    auto outer = make("b");
    outer->addNamespace(make("c"));
    branch->addNamespace(std::move(outer));
    EXPECT_EQ(takeEvents(), Events{});

    _root.addNamespace("branch", std::move(branch));
    EXPECT_EQ(takeEvents(), (Events{"start a", "start b", "start c"}));
    branch = _root.removeNamespace("branch");
    EXPECT_EQ(takeEvents(), (Events{"stop c", "stop b", "stop a"}));
    branch->removeNamespace("Test");
    EXPECT_EQ(takeEvents(), Events{"~a"});

    _root.addNamespace("branch", std::move(branch));
    EXPECT_EQ(takeEvents(), (Events{"start b", "start c"})) << "a node may come back";
    Root::shutdown();
    EXPECT_EQ(takeEvents(), (Events{"stop c", "stop b", "~b", "~c"}));
}

TEST_F(Tree, NodeStopsBeforeItsConnectionsAreUndone)
{
    auto node = make("a");
    node->addOutSlot("x", &_out);
    node->_onStop = [&] { _out.push(Trovio::Data<float>(5.0F)); };
    _root.addInSlot("in", &_in);
    _root.addRoute("Test/x", "in");
    _root.addNamespace(std::move(node));

    const auto removed = _root.removeNamespace("Test");
    ASSERT_FALSE(_in.empty());
    EXPECT_EQ(_in.pop().getValue(), 5.0F);
    _out.push(Trovio::Data<float>(6.0F));
    EXPECT_TRUE(_in.empty());
}

TEST_F(Tree, NodeThatThrowsFromStartIsTakenOutAgainWithAllThatStartedBefore)
{
    auto branch = std::make_unique<Namespace>();
    branch->addNamespace(make("a"));
    auto bad = make("b");
    bad->_onStart = [] { throw Trovio::InvalidNodeException("never works"); };
    branch->addNamespace(std::move(bad));
    EXPECT_THROW(_root.addNamespace("branch", std::move(branch)), Trovio::InvalidNodeException);
    EXPECT_EQ(takeEvents(), (Events{"start a", "start b", "stop a", "~b", "~a"}));
    EXPECT_EQ(_root.addNamespace("branch", std::make_unique<Namespace>()), "branch");
}

TEST_F(Tree, StartMayUseTheTreeAndStopMayThrow)
{
    const LogCapture log;
    auto node = make("a");
    TestNode& running = *node;
    running._onStart = [&] {
        running.addInSlot("in", &_in);
        running.addNamespace(make("b"));
        EXPECT_EQ(_root.getNamespace("Test"), nullptr) << "not to be found while it starts";
    };
    running._onStop = [] { throw std::runtime_error("stuck"); };
    _root.addNamespace(std::move(node));
    EXPECT_EQ(takeEvents(), (Events{"start a", "start b"}));
    _root.removeNamespace("Test");
    EXPECT_EQ(takeEvents(), (Events{"stop b", "stop a", "~a", "~b"}));
    ASSERT_EQ(log.texts().size(), 1U);
    EXPECT_TRUE(says(log.texts()[0], "'Test' threw while it stopped: stuck"));
}

TEST_F(Tree, SecondRemoverFindsNothing)
{
    auto branch = std::make_unique<Namespace>();
    Namespace& inner = *branch;
    auto node = make("a");
    node->_onStop = [&] {
        EXPECT_EQ(_root.getNamespace("branch"), nullptr);
        EXPECT_THROW(_root.removeNamespace("branch"), Trovio::InvalidNamespaceException);
        EXPECT_THROW(inner.removeNamespace("Test"), Trovio::InvalidNamespaceException);
        inner.addNamespace(make("late"));
    };
    branch->addNamespace(std::move(node));
    _root.addNamespace("branch", std::move(branch));
    EXPECT_NE(_root.removeNamespace("branch"), nullptr);
    EXPECT_EQ(takeEvents(), (Events{"start a", "stop a", "~late", "~a"})) << "what comes too late never starts";
}

TEST_F(Tree, NodeWhoseTurnComesWhileItsBranchLeavesNeverStarts)
{
    _root.addNamespace("outer", std::make_unique<Namespace>());
    Namespace& outer = *_root.getNamespace("outer");
    std::unique_ptr<Namespace> removed;
    std::thread remover;
    auto first = make("a");
    first->_onStart = [&] {
        remover = std::thread([&] { removed = _root.removeNamespace("outer"); });
        while (_root.getNamespace("outer"))
            std::this_thread::yield();
    };
    auto branch = std::make_unique<Namespace>();
    branch->addNamespace(std::move(first));
    branch->addNamespace(make("b"));
    outer.addNamespace("branch", std::move(branch));
    remover.join();
    EXPECT_EQ(takeEvents(), (Events{"start a", "stop a"}));
}

TEST_F(Tree, SettingsAreAppliedWholeOrNotAtAll)
{
    auto node = make("a");
    node->setFieldValues("size=2 label=good");
    node->setDirty(false);
    for (const char* bad : {"size=10", "label=x size=0", "size=4 speed=1", "label=x size=7", "size=4 size=5"}) {
        EXPECT_THROW(node->setFieldValues(bad), Trovio::InvalidFieldException) << bad;
        EXPECT_EQ(node->_size, 2) << bad;
    }
    EXPECT_FALSE(node->isDirty());
    TestNode& standing = *node;
    EXPECT_EQ(_root.addNamespace(std::move(node)), "good");
    EXPECT_THROW(standing.setFieldValues("size=4"), Trovio::InvalidFieldException) << "it runs already";
    EXPECT_EQ(standing._size, 2);

    auto plain = make("b");
    TestNode& configured = *plain;
    EXPECT_EQ(_root.addNamespace(std::move(plain)), "Test");
    EXPECT_EQ(configured._size, 3) << "without settings it is configured with its defaults";
}

TEST_F(Tree, InspectionShowsStateCountersSlotsAndRoutes)
{
    auto node = make("a");
    node->addCounter("packets").add(42);
    node->addOutSlot("x", &_out);
    node->_remarks = {{"x", "its clock is late"}};
    TestNode& running = *node;
    _root.addInSlot("in", &_in);
    _root.addRoute("Test/*", "in");
    _root.addNamespace(std::move(node));
    running.setDegraded("port 9000 is taken");

    const Trovio::NamespaceInfo info = _root.inspect();
    ASSERT_EQ(info._slots.size(), 2U);
    EXPECT_TRUE(info._slots[0]._label == "Test/x" && !info._slots[0]._own && info._slots[0]._typeName == "Float");
    EXPECT_TRUE(info._slots[1]._label == "in" && info._slots[1]._own);
    EXPECT_EQ(info._routes.at(0)._pairs.at(0)._from, "Test/x");
    const auto& shown = info._children.at(0);
    EXPECT_TRUE(shown._label == "Test" && shown._externalRoutes.at(0)._slots == 1);
    EXPECT_EQ(shown._node->_counters.at(0)._value, 42U);
    EXPECT_EQ(shown._node->_remarks.at(0)._text, "its clock is late");
    EXPECT_TRUE(shown._node->_state._degraded && shown._node->_state._reason == "port 9000 is taken");
}

TEST_F(Tree, RecoveryIsAsVisibleAsFailure)
{
    TestNode& node = *make("a").release();
    _root.addNamespace(std::unique_ptr<Trovio::Node>(&node));
    const LogCapture log;
    node.setRunning("uses device 'pad'");
    node.setDegraded("'pad' is gone");
    node.setDegraded("'pad' is gone");
    EXPECT_EQ(node.getState().describe(Trovio::Time::getCurrentTime()), "degraded, 'pad' is gone");
    const Trovio::Time before = Trovio::Time::getCurrentTime();
    node.setRunning("uses device 'stick'");
    node.setRunning("uses device 'stick'");
    const Trovio::NodeState state = node.getState();
    EXPECT_GE(state._since.getSeconds(), before.getSeconds());
    EXPECT_EQ(state.describe(state._since),
              "running, uses device 'stick'; runs again for 0 s, was degraded: 'pad' is gone");
    EXPECT_EQ(log.texts(), (Events{"node 'Test' uses device 'pad'\n", "node 'Test' is degraded: 'pad' is gone\n",
                                   "node 'Test' runs again, uses device 'stick'\n"}));
    EXPECT_EQ(log.entries()[1]._level, log.entries()[2]._level) << "who sees the one must see the other";
}

TEST(RootDeathTest, AccessBeforeInitEndsTheProcess)
{
    EXPECT_EXIT(Root::get(), ::testing::KilledBySignal(SIGABRT),
                "^FATAL: Accessed Trovio::Root that is not initialized!\n$");
}

TEST(RootDeathTest, NodesStopBeforeTheyEndAlsoWithoutShutdown)
{
    const auto endWithoutShutdown = [] {
        static auto& events = *new Events; // the root outlives what main() has made
        Root::init();
        auto node = std::make_unique<TestNode>("a", events);
        node->_onStop = [] { std::fputs("stopped\n", stderr); };
        Root::get().addNamespace(std::move(node));
        std::exit(0);
    };
    EXPECT_EXIT(endWithoutShutdown(), ::testing::ExitedWithCode(0), "^stopped\n$");
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
