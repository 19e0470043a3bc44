#include "nodes/osc/packet/OscPacket.h"

#include "nodes/osc/address/OscPattern.h"
#include "nodes/osc/packet/OscPacker.h"
#include "tests/nodes/OscMessages.h"
#include "tests/support/Says.h"
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace Trovio::Nodes {
namespace {

using namespace std::string_literals;

constexpr Time arrival(1'700'000'000.5);

struct Seen {
    std::string _address, _tags;
    double _stamp;
    bool operator==(const Seen&) const = default;
};

class Collector final : public OscMessageVisitor {
public:
    void visit(const OscMessage& message) override
    {
        _seen.push_back({std::string(message._address), std::string(message._tags), message._stamp.getSeconds()});
    }
    std::vector<Seen> _seen;
};

std::vector<Seen> messagesOf(Bytes packet)
{
    Collector collector;
    EXPECT_EQ(readOscPacket(packet, arrival, collector), std::nullopt);
    return collector._seen;
}

TEST(OscPacket, MalformedOnesAreRefusedWithTheirReasonWhereverTheyStand)
{
    struct Row {
        Packet _packet;
        const char* _mentioned;
    };
    const Packet good = numbersMessage("/good", 'f', {1});
    int number = 0;
    for (const Row& row :
         {Row{{}, "nothing"}, Row{raw("/ab\0,\0\0"s), "multiple of 4"}, Row{raw("abc\0,\0\0\0"s), "neither"},
          Row{raw("/abc"), "address"}, Row{raw("/ab\0"s), "type tags"}, Row{raw("/ab\0f\0\0\0"s), "type tags"},
          Row{raw("/ab\0,fff"s), "type tags"}, Row{raw("/ab\0,x\0\0abcd"s), "type 'x'"},
          Row{raw("/ab\0,d\0\0abcd"s), "type 'd'"}, Row{raw("/ab\0,s\0\0abcd"s), "type 's'"},
          Row{raw("/ab\0,b\0\0\0\0\0\5abcd"s), "type 'b'"}, Row{raw("/ab\0,b\0\0\xff\xff\xff\xff"s), "type 'b'"},
          Row{raw("/ab\0,b\0\0"s), "type 'b'"}, Row{raw("/ab\0,\0\0\0abcd"s), "behind"},
          Row{raw("#bundle\0\0\0\0\0"s), "neither"}, Row{raw("#bundle\0\0\0\0\0\0\0\0\1\0\0\0\0"s), "nothing"},
          Row{raw("#bundle\0\0\0\0\0\0\0\0\1\0\0\0\xffsome"s), "longer"},
          Row{raw("#bundle\0\0\0\0\0\0\0\0\1\xff\xff\xff\xfcsome"s), "longer"}}) {
        SCOPED_TRACE("row " + std::to_string(number++));
        for (const Packet& packet : {row._packet, bundleOf(1, {good, row._packet})}) {
            Collector collector;
            const auto problem = readOscPacket(packet, arrival, collector);
            EXPECT_TRUE(says(problem.value_or("accepted"), row._mentioned));
            EXPECT_TRUE(collector._seen.empty()); // not even the good one
        }
    }
}

TEST(OscPacket, BundlesGoEightDeep)
{
    Packet packet = numbersMessage("/a", 'i', {1});
    for (unsigned depth = 1; depth <= MaxOscDepth; ++depth)
        packet = bundleOf(1, {packet});
    EXPECT_EQ(messagesOf(packet).size(), 1U);
    Collector collector;
    EXPECT_EQ(readOscPacket(bundleOf(1, {packet}), arrival, collector), "bundles deeper than 8");
}

TEST(OscPacket, HasUpToSixteenPatterns)
{
    const Packet one = raw(std::string("/*\0\0,\0\0\0", 8));
    Packet packet = bundleOf(1, {});
    const auto add = [&] {
        const Packet element = bundleOf(1, {one});
        packet.insert(packet.end(), element.begin() + 16, element.end());
    };
    for (unsigned i = 0; i < MaxOscPatterns; ++i)
        add();
    EXPECT_EQ(messagesOf(packet).size(), MaxOscPatterns);
    add();
    Collector collector;
    EXPECT_EQ(readOscPacket(packet, arrival, collector), "more than 16 messages with address patterns");
    EXPECT_TRUE(collector._seen.empty());
}

TEST(OscPacket, EachMessageHasTheTimeOfItsInnermostBundle)
{
    const Packet message = numbersMessage("/a", 'f', {1});
    const OscTimeTag outer = toTimeTag(Time(1'600'000'000.25)), inner = toTimeTag(Time(1'600'000'001.5));
    EXPECT_EQ(messagesOf(message), (std::vector{Seen{"/a", "f", arrival.getSeconds()}}));
    EXPECT_EQ(messagesOf(bundleOf(outer, {message, bundleOf(inner, {message}), bundleOf(1, {message}), message})),
              (std::vector{Seen{"/a", "f", 1'600'000'000.25}, Seen{"/a", "f", 1'600'000'001.5},
                           Seen{"/a", "f", arrival.getSeconds()}, Seen{"/a", "f", 1'600'000'000.25}}));
    EXPECT_TRUE(messagesOf(bundleOf(outer, {})).empty());
}

TEST(OscPattern, MeansTheAddressesThatItShould)
{
    const std::pair<const char*, bool> lists[] = {
        {"/wand/* /wand/position  /*/* /wand/position  /w*d/*n /wand/position  /wand* /wand  "
         "/? /a  /[a-c] /b  /[!a-c] /d  /[c-] /-  /{left,right}/x /right/x  /{a,ab}c /abc  "
         "/{a,}b /b  /*{a,ba} /xba  /a} /a}",
         true},
        {"/* /wand/position  * /a  /?? /a  /a?b /a/b  /[a-c] /d  /[!a-c] /b  /a[!x]b /a/b  "
         "/[] /a  /{a,b} /c  /{a /a  /[a /a",
         false}}; // '*' stays between two '/'
    for (const auto& [list, expected] : lists) {
        std::istringstream rows(list);
        for (std::string pattern, address; rows >> pattern >> address;)
            EXPECT_EQ(matchesOscPattern(pattern, OscAddressMap(address)), expected) << pattern << " and " << address;
    }
    EXPECT_FALSE(matchesOscPattern("/" + std::string(MaxOscAddress, '*'), OscAddressMap("/a")));
}

TEST(OscPattern, ManyStarsTakeNoLongerThanOthers)
{
    std::string pattern = "/";
    while (pattern.size() < MaxOscAddress - 2)
        pattern += "*a";
    // One way after another, this would go on until the end of time.
    const OscAddressMap address("/" + std::string(MaxOscAddress - 1, 'a'));
    EXPECT_FALSE(matchesOscPattern(pattern + "b", address));
    EXPECT_TRUE(matchesOscPattern(pattern, address));
}

TEST(OscTime, TagsHoldTheDatesOfTwoEras)
{
    for (const double seconds : {1'700'000'000.123456, 0.0, -1.5, 2'085'978'495.75, 2'085'978'496.0, 4'000'000'000.5})
        EXPECT_EQ(fromTimeTag(toTimeTag(Time(seconds)), arrival), Time(seconds)) << std::fixed << seconds;
    EXPECT_EQ(toTimeTag(Time(0.0)), 2'208'988'800ULL << 32U);
    for (const double seconds : {-1e9, 5e9, 1e300, std::nan("")})
        EXPECT_EQ(toTimeTag(Time(seconds)), OscImmediately) << seconds;
    EXPECT_EQ(fromTimeTag(0, arrival), arrival);
}

std::vector<std::vector<Seen>> packed(Bundling bundling, const std::vector<std::pair<Packet, double>>& messages)
{
    std::vector<std::vector<Seen>> packets;
    OscPacker packer(bundling, [&](Bytes packet, std::size_t count) {
        packets.push_back(messagesOf(packet));
        EXPECT_EQ(packets.back().size(), count);
        EXPECT_EQ(packet.front() == '#', bundling == Bundling::Always || count > 1);
    });
    for (const auto& [message, stamp] : messages)
        packer.add(message, Time(stamp));
    packer.flush();
    packer.flush();
    return packets;
}

TEST(OscPacker, BundlesKeepEveryTimeAndStayBelowTheFrameOfANetwork)
{
    const Packet small = numbersMessage("/s", 'f', {1});
    const Packet large = numbersMessage("/l", 'd', std::vector<double>(120, 0.5));
    const std::vector<Seen> expected{{"/s", "f", 1e9 + 2}, {"/s", "f", 1e9 + 1}, {"/s", "f", 1e9 + 3}};
    EXPECT_EQ(packed(Bundling::Auto, {{small, 1e9 + 2}, {small, 1e9 + 1}, {small, 1e9 + 3}}),
              (std::vector<std::vector<Seen>>{expected}));
    EXPECT_EQ(packed(Bundling::Auto, {{small, 1e9}})[0][0]._stamp, arrival.getSeconds()) << "alone, so bare";
    EXPECT_EQ(packed(Bundling::Always, {{small, 1e9}})[0][0]._stamp, 1e9);
    EXPECT_EQ(packed(Bundling::Never, {{small, 1e9}, {small, 1e9}}).size(), 2U);
    EXPECT_TRUE(packed(Bundling::Always, {}).empty());
    EXPECT_EQ(packed(Bundling::Auto, {{small, 1e9}, {large, 1e9}, {large, 1e9}, {small, 1e9}}).size(), 2U);
}

} // namespace
} // namespace Trovio::Nodes
