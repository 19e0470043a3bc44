#include "nodes/shared/NameLookup.h"

#include "tests/nodes/OscFixture.h"

namespace Trovio::Nodes {
namespace {

TEST(NameLookup, FindsTheLoopback)
{
    const auto lookup = NameLookup::system();
    lookup->begin("localhost", 9000);
    std::optional<NameLookup::Answer> answer;
    await([&] { return (answer = lookup->poll()).has_value(); });
    ASSERT_TRUE(answer->_address) << answer->_problem;
    const std::string text = answer->_address->str();
    EXPECT_TRUE(text == "127.0.0.1:9000" || text == "[::1]:9000") << text;
}

TEST(NameLookup, CanBeGivenUpAndAskedAgainAtAnyMoment)
{
    const auto lookup = NameLookup::system();
    for (int round = 0; round < 20; ++round) {
        lookup->begin("nowhere.invalid", 9000);
        lookup->poll();
        if (round % 2 == 0)
            lookup->cancel();
    }
}

class LookingOscNode : public OscFixture {};

TEST_F(LookingOscNode, StopsWhileTheSystemLooksForAName)
{
    for (int round = 0; round < 10; ++round)
        run("send=nowhere.invalid:9000 out='/a Float'"); // the one before stops
}

} // namespace
} // namespace Trovio::Nodes
