#include "nodes/osc/OscPacket.h"

#include "nodes/osc/OscPacker.h"
#include "nodes/osc/OscPattern.h"
#include "tests/nodes/OscMessages.h"
#include <gtest/gtest.h>
#include <random>

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

struct Malformed {
    const char* _name;
    Packet _packet;
    const char* _mentioned;
};
void PrintTo(const Malformed& row, std::ostream* out)
{
    *out << row._name;
}
class MalformedPacket : public ::testing::TestWithParam<Malformed> {};

TEST_P(MalformedPacket, IsRefusedWithItsReasonWhereverItStands)
{
    const Packet good = numbersMessage("/good", 'f', {1});
    for (const Packet& packet : {GetParam()._packet, bundleOf(1, {good, GetParam()._packet})}) {
        Collector collector;
        const auto problem = readOscPacket(packet, arrival, collector);
        ASSERT_TRUE(problem);
        EXPECT_NE(problem->find(GetParam()._mentioned), std::string::npos) << *problem;
        EXPECT_TRUE(collector._seen.empty()); // not even the good one
    }
}

INSTANTIATE_TEST_SUITE_P(
    Because, MalformedPacket,
    ::testing::Values(Malformed{"Empty", {}, "nothing"}, Malformed{"OddSize", raw("/ab\0,\0\0"s), "multiple of 4"},
                      Malformed{"NoAddress", raw("abc\0,\0\0\0"s), "neither"},
                      Malformed{"AddressNotEnded", raw("/abc"), "address"},
                      Malformed{"NoTags", raw("/ab\0"s), "type tags"},
                      Malformed{"TagsWithoutComma", raw("/ab\0f\0\0\0"s), "type tags"},
                      Malformed{"TagsNotEnded", raw("/ab\0,fff"s), "type tags"},
                      Malformed{"UnknownTag", raw("/ab\0,x\0\0abcd"s), "type 'x'"},
                      Malformed{"NumberCutShort", raw("/ab\0,d\0\0abcd"s), "type 'd'"},
                      Malformed{"TextNotEnded", raw("/ab\0,s\0\0abcd"s), "type 's'"},
                      Malformed{"BlobLongerThanPacket", raw("/ab\0,b\0\0\0\0\0\5abcd"s), "type 'b'"},
                      Malformed{"BlobOfFourGigabytes", raw("/ab\0,b\0\0\xff\xff\xff\xff"s), "type 'b'"},
                      Malformed{"BlobSizeMissing", raw("/ab\0,b\0\0"s), "type 'b'"},
                      Malformed{"BytesLeft", raw("/ab\0,\0\0\0abcd"s), "behind"},
                      Malformed{"BundleHeaderCut", raw("#bundle\0\0\0\0\0"s), "neither"},
                      Malformed{"EmptyElement", raw("#bundle\0\0\0\0\0\0\0\0\1\0\0\0\0"s), "nothing"},
                      Malformed{"ElementTooLong", raw("#bundle\0\0\0\0\0\0\0\0\1\0\0\0\xffsome"s), "longer"},
                      Malformed{"ElementSizeNegative", raw("#bundle\0\0\0\0\0\0\0\0\1\xff\xff\xff\xfcsome"s),
                                "longer"}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(OscPacket, BundlesGoEightDeep)
{
    Packet packet = numbersMessage("/a", 'i', {1});
    for (unsigned depth = 1; depth <= MaxOscDepth; ++depth)
        packet = bundleOf(1, {packet});
    EXPECT_EQ(messagesOf(packet).size(), 1U);
    Collector collector;
    EXPECT_EQ(readOscPacket(bundleOf(1, {packet}), arrival, collector), "bundles deeper than 8");
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

TEST(OscPacket, NothingThatArrivesDoesHarm)
{
    const Packet original = bundleOf(5, {numbersMessage("/wand/position", 'd', {1, 2, 3}),
                                         raw("/s\0\0,sbT[r]\0text\0\0\0\0\0\0\0\4blob\1\2\3\4"s),
                                         bundleOf(1, {numbersMessage("/x", 'i', {7})})});
    ASSERT_EQ(messagesOf(original).size(), 3U);
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        // In memory of exactly its size, so that the address sanitizer sees every read beyond.
        Packet packet(original.begin(), original.end() - static_cast<int>(random() % 8) * 4);
        for (unsigned changes = random() % 4; changes > 0; --changes)
            packet[random() % packet.size()] = static_cast<std::uint8_t>(random());
        packet.shrink_to_fit();
        Collector collector;
        readOscPacket(packet, arrival, collector);
    }
}

struct Match {
    const char *_pattern, *_address;
    bool _expected;
};

TEST(OscPattern, MeansTheAddressesThatItShould)
{
    for (const auto& [pattern, address, expected] : {
             Match{"/wand/*", "/wand/position", true},
             {"/*", "/wand/position", false}, // '*' stays between two '/'
             {"/*/*", "/wand/position", true},
             {"*", "/a", false},
             {"/w*d/*n", "/wand/position", true},
             {"/wand*", "/wand", true},
             {"/?", "/a", true},
             {"/??", "/a", false},
             {"/a?b", "/a/b", false},
             {"/[a-c]", "/b", true},
             {"/[a-c]", "/d", false},
             {"/[!a-c]", "/d", true},
             {"/[!a-c]", "/b", false},
             {"/a[!x]b", "/a/b", false},
             {"/[c-]", "/-", true},
             {"/[]", "/a", false},
             {"/{left,right}/x", "/right/x", true},
             {"/{a,ab}c", "/abc", true},
             {"/{a,}b", "/b", true},
             {"/{a,b}", "/c", false},
             {"/*{a,ba}", "/xba", true},
             {"/{a", "/a", false},
             {"/[a", "/a", false},
             {"/a}", "/a}", true},
         })
        EXPECT_EQ(matchesOscPattern(pattern, address), expected) << pattern << " and " << address;
    EXPECT_FALSE(matchesOscPattern("/" + std::string(MaxOscAddress, '*'), "/a"));
}

TEST(OscPattern, ManyStarsTakeNoLongerThanOthers)
{
    std::string pattern = "/";
    while (pattern.size() < MaxOscAddress - 2)
        pattern += "*a";
    // One way after another, this would go on until the end of time.
    EXPECT_FALSE(matchesOscPattern(pattern + "b", "/" + std::string(MaxOscAddress - 1, 'a')));
    EXPECT_TRUE(matchesOscPattern(pattern, "/" + std::string(MaxOscAddress - 1, 'a')));
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

class Packing : public ::testing::Test {
protected:
    std::vector<std::vector<Seen>> pack(Bundling bundling, const std::vector<std::pair<Packet, double>>& messages)
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

    const Packet _small = numbersMessage("/s", 'f', {1});
    const Packet _large = numbersMessage("/l", 'd', std::vector<double>(120, 0.5));
};

TEST_F(Packing, EveryMessageKeepsItsTimeInABundle)
{
    const std::vector<Seen> expected{{"/s", "f", 1e9 + 2}, {"/s", "f", 1e9 + 1}, {"/s", "f", 1e9 + 3}};
    EXPECT_EQ(pack(Bundling::Auto, {{_small, 1e9 + 2}, {_small, 1e9 + 1}, {_small, 1e9 + 3}}),
              (std::vector<std::vector<Seen>>{expected}));
}

TEST_F(Packing, ALoneMessageIsBareUnlessBundlesAreAlwaysWanted)
{
    EXPECT_EQ(pack(Bundling::Auto, {{_small, 1e9}})[0][0]._stamp, arrival.getSeconds());
    EXPECT_EQ(pack(Bundling::Always, {{_small, 1e9}})[0][0]._stamp, 1e9);
    EXPECT_EQ(pack(Bundling::Never, {{_small, 1e9}, {_small, 1e9}}).size(), 2U);
    EXPECT_TRUE(pack(Bundling::Always, {}).empty());
}

TEST_F(Packing, PacketsStayBelowTheFrameOfANetwork)
{
    EXPECT_EQ(pack(Bundling::Auto, {{_small, 1e9}, {_large, 1e9}, {_large, 1e9}, {_small, 1e9}}).size(), 2U);
}

} // namespace
} // namespace Trovio::Nodes
