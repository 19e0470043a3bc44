#include "nodes/shared/NameLookup.h"

#include "tests/nodes/OscFixture.h"
#include <unistd.h>

namespace Trovio::Nodes {
namespace {

TEST(NameLookup, FindsTheLoopback)
{
    const auto lookup = NameLookup::system();
    // Where no table of hosts is, nobody may know the name.
    lookup->begin(::access("/etc/hosts", R_OK) == 0 ? "localhost" : "127.0.0.1", 9000);
    std::optional<NameLookup::Answer> answer;
    await([&] { return (answer = lookup->poll()).has_value(); });
    ASSERT_TRUE(answer->_address) << answer->_problem;
    const std::string text = answer->_address->str();
    EXPECT_TRUE(text == "127.0.0.1:9000" || text == "[::1]:9000") << text;
}

} // namespace
} // namespace Trovio::Nodes
