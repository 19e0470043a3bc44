#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include "trovio/Exception.h"
#include "trovio/InSlot.h"
#include "trovio/Namespace.h"
#include "trovio/OutSlot.h"
#include <algorithm>
#include <array>
#include <functional>
#include <gtest/gtest.h>

using Trovio::InSlot;
using Trovio::Namespace;
using Trovio::OutSlot;

namespace {

/// Whether what is pushed into the one now reaches the other.
template <class Out, class In>
bool delivers(OutSlot<Out>& out, InSlot<In>& in)
{
    while (!in.empty())
        in.pop();
    out.push(Trovio::Data<Out>(Out()));
    return !in.empty();
}

class Route : public ::testing::Test {
protected:
    Namespace& addChild(Namespace& parent, const std::string& label)
    {
        auto child = std::make_unique<Namespace>();
        child->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        return *parent.getNamespace(parent.addNamespace(label, std::move(child)));
    }

    Trovio::RouteInfo onlyRoute() const { return _namespace.inspect()._routes.at(0); }

    OutSlot<float> _out{"out"};
    OutSlot<float> _otherOut{"other out"};
    InSlot<float> _in{"in"};
    InSlot<float> _otherIn{"other in"};
    Namespace _namespace; // behind the slots that it refers to
};

TEST_F(Route, ConnectsWhicheverComesLastAndPartsWhicheverGoesFirst)
{
    const std::array<std::function<void()>, 3> come{[this] { _namespace.addOutSlot("a", &_out); },
                                                    [this] { _namespace.addInSlot("b", &_in); },
                                                    [this] { _namespace.addRoute("a", "b"); }};
    const std::array<std::function<void()>, 3> go{[this] { _namespace.removeSlot("a"); },
                                                  [this] { _namespace.removeSlot("b"); },
                                                  [this] { _namespace.removeRoute("a", "b"); }};
    std::array<std::size_t, 3> order{0, 1, 2};
    do {
        for (const std::size_t step : order) {
            EXPECT_FALSE(delivers(_out, _in));
            come[step]();
        }
        EXPECT_TRUE(delivers(_out, _in));
        EXPECT_EQ(onlyRoute()._connections, 1U);
        for (const std::size_t step : order) {
            go[step]();
            EXPECT_FALSE(delivers(_out, _in)) << step;
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(Route, SamePairByTwoRoutesCountsTwo)
{
    _namespace.addOutSlot("a", &_out);
    _namespace.addInSlot("b", &_in);
    _namespace.addRoute("a", "b");
    _namespace.addRoute("a", "b");
    _namespace.addRoute("*", "b");
    for (const char* from : {"a", "*", "a"}) {
        EXPECT_TRUE(delivers(_out, _in));
        _namespace.removeRoute(from, "b");
    }
    EXPECT_FALSE(delivers(_out, _in));
}

TEST_F(Route, PatternPutsWhatItMatchedIntoTheTarget)
{
    _namespace.addOutSlot("OSC/wand/x", &_out);
    _namespace.addOutSlot("OSC/head/x", &_otherOut);
    _namespace.addRoute("OSC/*/*", "*:*");
    _namespace.addInSlot("wand:x", &_in);
    _namespace.addInSlot("head:x", &_otherIn);
    EXPECT_TRUE(delivers(_out, _in) && delivers(_otherOut, _otherIn));
    EXPECT_FALSE(delivers(_out, _otherIn) || delivers(_otherOut, _in));
    EXPECT_EQ(onlyRoute()._connections, 2U);
}

TEST_F(Route, SlotsAreSeenAboveOnlyThroughExternalRoutesLevelByLevel)
{
    Namespace& context = addChild(_namespace, "Context");
    Namespace& device = addChild(context, "OSC");
    device.addOutSlot("wand", &_out);
    _namespace.addInSlot("Wand", &_in);

    for (const char* label : {"wand", "OSC/wand", "Context/wand"}) {
        _namespace.addRoute(label, "Wand");
        EXPECT_FALSE(delivers(_out, _in)) << label;
    }
    _namespace.addRoute("Context/OSC/wand", "Wand");
    EXPECT_TRUE(delivers(_out, _in));

    context.removeExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    EXPECT_FALSE(delivers(_out, _in));
    context.addExternalRoute("OSC/*", "Context/OSC/*");
    EXPECT_TRUE(delivers(_out, _in));
    device.removeExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    EXPECT_FALSE(delivers(_out, _in));
}

TEST_F(Route, SlotsShownUnderTheLabelOfAnotherShareItAndStayWhenThatOneGoes)
{
    Namespace& device = addChild(_namespace, "OSC");
    _namespace.addRoute("OSC/wand", "Wand");
    _namespace.addInSlot("Wand", &_in);
    device.addOutSlot("wand", &_out);
    _namespace.addOutSlot("OSC/wand", &_otherOut);
    EXPECT_TRUE(delivers(_out, _in) && delivers(_otherOut, _in));
    _namespace.removeSlot("OSC/wand");
    EXPECT_TRUE(delivers(_out, _in));
    EXPECT_FALSE(delivers(_otherOut, _in));
    _namespace.removeSlot("OSC/wand");
    EXPECT_TRUE(delivers(_out, _in)) << "a child's slot is not the parent's to remove";
}

TEST_F(Route, NamespaceLabelIsTheOneThatTheParentGave)
{
    _namespace.addInSlot("Wand", &_in);
    _namespace.addRoute("Context2/wand", "Wand");
    auto child = std::make_unique<Namespace>();
    child->addOutSlot("wand", &_out);
    child->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    addChild(_namespace, "Context");
    EXPECT_EQ(_namespace.addNamespace("Context", std::move(child)), "Context2");
    EXPECT_TRUE(delivers(_out, _in));

    const auto removed = _namespace.removeNamespace("Context2");
    EXPECT_FALSE(delivers(_out, _in));
    _namespace.removeNamespace("Context");
    _namespace.addRoute("Context/wand", "Wand");
    const auto sleeping = _namespace.inspect()._routes;
    EXPECT_TRUE(sleeping[0].isPending() && sleeping[1].isPending());
}

TEST_F(Route, NamespaceThatWasTakenOutHasNoConnectionsUntilItIsBack)
{
    Namespace& child = addChild(_namespace, "child");
    Namespace& grandchild = addChild(child, "grandchild");
    child.addInSlot("in", &_in);
    grandchild.addOutSlot("out", &_out);
    grandchild.addInSlot("in", &_otherIn);
    child.addRoute("grandchild/out", "in");
    grandchild.addRoute("out", "in");
    EXPECT_TRUE(delivers(_out, _in) && delivers(_out, _otherIn));

    auto removed = _namespace.removeNamespace("child");
    EXPECT_FALSE(delivers(_out, _in) || delivers(_out, _otherIn));
    removed->addRoute("grandchild/out", "grandchild/in");
    EXPECT_FALSE(delivers(_out, _otherIn));
    EXPECT_EQ(removed->inspect()._routes[0]._reason, "the namespace was taken out");

    _namespace.addNamespace("child", std::move(removed));
    EXPECT_TRUE(delivers(_out, _in) && delivers(_out, _otherIn));
}

TEST_F(Route, MismatchIsLoggedOnceHoweverOftenTheEndsComeAndGo)
{
    InSlot<double> wide("wide");
    const LogCapture log;
    _namespace.addRoute("out", "wide");
    _namespace.addInSlot("wide", &wide);
    for (int i = 0; i < 3; ++i) {
        _namespace.addOutSlot("out", &_out);
        EXPECT_FALSE(delivers(_out, wide));
        EXPECT_TRUE(onlyRoute().isPending());
        EXPECT_EQ(onlyRoute()._reason + "\n", log.texts().at(0));
        _namespace.removeSlot("out");
    }
    EXPECT_EQ(onlyRoute()._reason, "no slot has the label 'out'");
    ASSERT_EQ(log.texts().size(), 1U);
    EXPECT_EQ(log.texts()[0], "route 'out' -> 'wide': 'out' carries Float, 'wide' takes Double; give both ends the "
                              "same type, or route to another slot\n");
    _namespace.removeRoute("wide", "out");
    EXPECT_EQ(log.texts().size(), 2U) << "an unknown route is not removed in silence";
}

TEST_F(Route, RefusedOnesLeaveNothingBehind)
{
    _namespace.addOutSlot("a", &_out);
    EXPECT_THROW(_namespace.addRoute("a", "*"), Trovio::Exception);
    EXPECT_THROW(_namespace.addExternalRoute("", "a"), Trovio::Exception);
    EXPECT_THROW(_namespace.addOutSlot("a", &_otherOut), Trovio::Exception);
    EXPECT_THROW(_namespace.addInSlot("a", &_in), Trovio::Exception);
    EXPECT_THROW(_namespace.addInSlot("", &_in), Trovio::Exception);
    EXPECT_THROW(_namespace.addInSlot(std::string(1025, 'x'), &_in), Trovio::Exception);
    EXPECT_THROW(_namespace.addInSlot("b", nullptr), Trovio::Exception);
    const auto info = _namespace.inspect();
    EXPECT_TRUE(info._routes.empty() && info._externalRoutes.empty() && info._slots.size() == 1);
    EXPECT_FALSE(_namespace.isDirty());
}

TEST_F(Route, LabelsThatGrowWithEveryLevelEndAtTheLimit)
{
    const LogCapture log;
    Namespace* level = &_namespace;
    for (int i = 0; i < 20; ++i) {
        auto child = std::make_unique<Namespace>();
        child->addExternalRoute("*", "{SlotLabel}{SlotLabel}");
        level = level->getNamespace(level->addNamespace("n", std::move(child)));
    }
    level->addOutSlot("12345678", &_out);
    EXPECT_TRUE(_namespace.inspect()._slots.empty());
    EXPECT_EQ(log.texts().size(), 1U);
}

} // namespace
