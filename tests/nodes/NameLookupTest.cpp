#include "nodes/shared/NameLookup.h"

#include <gtest/gtest.h>
#include <netdb.h>
#include <thread>

namespace {

using namespace Trovio::Nodes;

NameLookup::Answer answerOf(NameLookup& lookup)
{
    auto answer = lookup.poll();
    for (; !answer; answer = lookup.poll())
        std::this_thread::yield();
    return *answer;
}

TEST(NameLookup, OfTheSystemFindsItsOwnMachineAlsoAfterOneThatWasGivenUp)
{
    addrinfo* known = nullptr;
    if (getaddrinfo("localhost", nullptr, nullptr, &known) != 0)
        GTEST_SKIP() << "this system does not know the name localhost; is there no /etc/hosts?";
    freeaddrinfo(known);
    const auto lookup = NameLookup::system();
    EXPECT_NE(answerOf(*lookup)._problem, "") << "nothing was asked";
    lookup->begin("localhost", 1000);
    lookup->begin("localhost", 2000);
    const auto found = answerOf(*lookup);
    ASSERT_TRUE(found._address) << found._problem;
    EXPECT_TRUE(found._address->isLoopback()) << found._address->str();
    EXPECT_EQ(found._address->getPort(), 2000);
    lookup->begin("localhost", 3000);
    lookup->cancel();
    EXPECT_NE(answerOf(*lookup)._problem, "");
}

TEST(NameLookup, OfWhatIsNoNameSaysSo)
{
    const auto lookup = NameLookup::system();
    lookup->begin(std::string(300, 'a'), 1000);
    const auto found = answerOf(*lookup);
    EXPECT_FALSE(found._address);
    EXPECT_NE(found._problem, "");
}
} // namespace
