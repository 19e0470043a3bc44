#include "nodes/osc/packet/OscGuess.h"
#include "nodes/osc/OscMethod.h"
#include "nodes/osc/address/OscEntryList.h"
#include "tests/nodes/OscMessages.h"
#include <gtest/gtest.h>

namespace Trovio::Nodes {
namespace {

/// Hands each message to all of them.
struct Guesser final : OscMessageVisitor {
    explicit Guesser(const std::string& entry = {})
    {
        if (entry.empty())
            return;
        const Settings settings({Setting::text("in", "", "", "")}, quoteOscEntries(entry));
        _method.emplace(readOscEntries(settings, "in", OscDirection::In).at(0));
    }
    void visit(const OscMessage& message) override
    {
        _guess.note(message);
        _fits = _method && _method->deliver(message) == OscFit::Fits;
    }
    OscGuess _guess;
    std::optional<OscMethod> _method;
    bool _fits = false;
};

TEST(OscGuess, FollowsFromTheArgumentsAndTakesTheMessage)
{
    const std::pair<Packet, std::string> rows[] = {
        {mixedMessage("/a", "fff", 1., 2., 3.), "Vec3f"},
        {mixedMessage("/a", "ffff", 0., 0.7071, 0., -0.7071), "Rotation"},
        {mixedMessage("/a", "dddd", 0., 0., 0., 1.), "Rotation"},
        {mixedMessage("/a", "ffff", 0.5, 0.2, 0., 1.), "ColorRGBA"},
        {mixedMessage("/a", "ffff", 5., 0.2, 0., 1.), "Vec4f"},
        {mixedMessage("/a", "ffffff", 5., 0.2, 0., 1., 90., 45.), "Vec3f:position Vec3f:angles"},
        {mixedMessage("/a", "fffffff", 5., 0.2, 0., 0., 0., 0., 1.), "Vec3f:position Rotation:rotation"},
        {mixedMessage("/a", "sfffffff", "Hmd", 5., 0.2, 0., 0., 0., 0., 1.), "s:Hmd Vec3f:position Rotation:rotation"},
        {mixedMessage("/a", "ssf", "it's a", "b,c", 5.), "s:\"it's a\" s:\"b,c\" Float"},
        {mixedMessage("/a", "sf", "\"quoted\"", 5.), "_ Float"},
        {mixedMessage("/a", "ifff", 3, 1., 2., 3.), "i:3 Vec3f"},
        {mixedMessage("/a", "ii", 3, 4), "Vec2d"},
        {mixedMessage("/a", "ss", "a", "b"), "String[]"},
        {mixedMessage("/a", "fffT", 1., 2., 3.), "Vec3f:value1 Bool:value2"},
        {mixedMessage("/a", "sfffffffTis", "Hmd", 1., 2., 3., 0., 0., 0., 1., 7, "on"),
         "s:Hmd Vec3f:value1 Rotation:value2 Bool:value3 Long:value4 String:value5"},
        {mixedMessage("/a", "fffffF", 1., 2., 3., 4., 5.), "_ _ _ _ _ Bool"},
        {mixedMessage("/a", "cfc", 'a', 1., 'b'), "_ Float _"},
    };
    for (const auto& [packet, items] : rows) {
        Guesser guesser;
        EXPECT_FALSE(readOscPacket(packet, Time(1.0), guesser));
        EXPECT_EQ(guesser._guess.getItems(), items);
        Guesser reader("/a " + items);
        EXPECT_FALSE(readOscPacket(packet, Time(1.0), reader));
        EXPECT_TRUE(reader._fits) << items;
    }
}

TEST(OscGuess, IsWhatAllMessagesMayBe)
{
    Guesser guesser;
    readOscPacket(mixedMessage("/a", "iffff", 3, 0., 0., 0., 1.), Time(1.0), guesser);
    readOscPacket(mixedMessage("/a", "iffff", 4, 0., 0., 0.5, 1.), Time(1.0), guesser);
    EXPECT_EQ(guesser._guess.getItems(), "i:4 ColorRGBA");
    EXPECT_EQ(guesser._guess.getItems(false), "_ ColorRGBA");
    readOscPacket(mixedMessage("/a", "iffff", 3, 0., 0., -0.5, 1.), Time(1.0), guesser);
    EXPECT_EQ(guesser._guess.getItems(), "i:3 Vec4f");
}

} // namespace
} // namespace Trovio::Nodes
