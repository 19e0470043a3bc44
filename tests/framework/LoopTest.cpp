#include "tests/support/LogCapture.h"
#include "tests/support/PassNode.h"
#include "tests/support/Says.h"
#include "trovio/Exception.h"
#include <gtest/gtest.h>

using Trovio::Namespace;

namespace {

class Loop : public ::testing::Test {
protected:
    void addNode(const std::string& label, bool isRelay = true)
    {
        _scene.addNamespace(label, std::make_unique<PassNode>(isRelay));
    }

    std::string refusal(const std::string& from, const std::string& to)
    {
        return problemOf<Trovio::Exception>([&] { _scene.addRoute(from, to); });
    }

    Namespace _scene;
};

TEST_F(Loop, IsSpelledOutAndRefused)
{
    for (const char* label : {"a", "b", "c"})
        addNode(label);
    EXPECT_EQ(refusal("a/out", "b/in"), "");
    EXPECT_EQ(refusal("b/out", "c/in"), "");
    EXPECT_EQ(refusal("a/out", "c/in"), "") << "two ways to one place are no loop";
    const struct {
        const char *_from, *_to, *_loop;
    } rows[] = {{"c/out", "a/in", "'c/out' -> 'a/in', 'a/out' -> 'c/in'; take"},
                {"b/out", "a/in", "'b/out' -> 'a/in', 'a/out' -> 'b/in'; take"},
                {"c/out", "c/in", "'c/out' -> 'c/in'; take"},
                {"*/out", "*/in", "'a/out' -> 'a/in'; take"}};
    for (const auto& row : rows)
        EXPECT_TRUE(says(refusal(row._from, row._to), row._loop));
    EXPECT_EQ(_scene.inspect()._routes.size(), 3U);
}

TEST_F(Loop, OfOnePatternIsRefusedAsAWhole)
{
    for (const char* label : {"xin/out", "x", "inx"})
        addNode(label);
    // Each of the two pairs alone would do: x/out -> inx/in and inx/out -> x/in.
    _scene.addRoute("inx/out", "x/in");
    EXPECT_NE(refusal("*/out", "in*/in"), "");
    _scene.removeRoute("inx/out", "x/in");
    EXPECT_EQ(refusal("*/out", "in*/in"), "") << "what was tried left something behind";
}

TEST_F(Loop, ThroughADeviceIsNone)
{
    addNode("device", false);
    addNode("filter");
    EXPECT_EQ(refusal("device/out", "filter/in"), "");
    EXPECT_EQ(refusal("filter/out", "device/in"), "");
    EXPECT_EQ(refusal("device/out", "device/in"), "");
}

TEST_F(Loop, ThatComesLaterStaysApartUntilAnotherRouteGoes)
{
    const LogCapture log;
    _scene.addRoute("a/out", "b/in");
    _scene.addRoute("b/out", "a/in");
    addNode("a");
    addNode("b");
    const auto apart = [this] {
        std::string reasons;
        for (const auto& route : _scene.inspect()._routes)
            reasons += route._reason;
        return reasons;
    };
    ASSERT_EQ(log.texts().size(), 1U);
    EXPECT_EQ(apart() + "\n", log.texts()[0]);
    EXPECT_TRUE(says(apart(), "would close a loop of nodes: '"));

    for (int i = 0; i < 3; ++i)
        _scene.addNamespace("b", _scene.removeNamespace("b"));
    EXPECT_NE(apart(), "");
    EXPECT_LE(log.texts().size(), 2U) << "at most one message for each of the two";

    _scene.removeRoute("a/out", "b/in");
    EXPECT_EQ(apart(), "");
    EXPECT_EQ(_scene.inspect()._routes.at(0)._connections, 1U);
}

TEST_F(Loop, IsSeenAcrossLevels)
{
    auto inner = std::make_unique<Namespace>();
    inner->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    inner->addNamespace("a", std::make_unique<PassNode>());
    inner->addNamespace("b", std::make_unique<PassNode>());
    inner->addRoute("a/out", "b/in");
    _scene.addNamespace("inner", std::move(inner));
    EXPECT_TRUE(says(refusal("inner/b/out", "inner/a/in"), "'a/out' -> 'b/in'"));
    const auto gone = _scene.removeNamespace("inner");
}

// Chains that grow at either end, and a hub: a search that walked through all of it for each route would not end in
// time.
TEST_F(Loop, IsLookedForAmongThousandsOfRoutes)
{
    constexpr int count = 10'000;
    const auto label = [](int number) { return "n" + std::to_string(number); };
    for (int i = 0; i < count; ++i)
        addNode(label(i));
    addNode("hub");
    constexpr int quarter = count / 4;
    for (int i = 1; i < quarter; ++i) {
        _scene.addRoute(label(i) + "/out", label(i - 1) + "/in");
        _scene.addRoute(label(2 * quarter - i) + "/out", label(2 * quarter - i - 1) + "/in");
    }
    for (int i = 2 * quarter; i < count; ++i)
        i < 3 * quarter ? _scene.addRoute("hub/out", label(i) + "/in") : _scene.addRoute(label(i) + "/out", "hub/in");

    EXPECT_EQ(refusal(label(quarter) + "/out", label(quarter - 1) + "/in"), "");
    EXPECT_EQ(refusal("n0/out", label(count - 1) + "/in"), "");
    const std::string longest = refusal(label(2 * quarter) + "/out", label(2 * quarter - 1) + "/in");
    EXPECT_TRUE(says(longest, ", and 4983 more; take"));
}

} // namespace
