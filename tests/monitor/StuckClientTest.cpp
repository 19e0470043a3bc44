#include "base/Sanitizers.h"
#include "tests/monitor/ServerBench.h"
#include "tests/monitor/WebSocketClient.h"
#include "tests/support/AllocationCount.h"
#include "trovio/InSlot.h"

#include <fstream>
#include <unistd.h>

namespace {

using namespace Monitor;

constexpr std::uint64_t rate = 20'000, seconds = 30;                       // records a second
constexpr std::uint64_t perRound = rate * 16 / 1000, all = rate * seconds; // a round is 16 ms
[[maybe_unused]] constexpr std::uint64_t maxMore = 16 << 20;               // bytes

std::uint64_t residentBytes()
{
    std::uint64_t total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

/// An out-slot, and what it leads to.
struct Flow {
    Flow()
    {
        Trovio::Root::get().addOutSlot("Wand", &_from);
        Trovio::Root::get().addInSlot("Lamp", &_to);
        Trovio::Root::get().addRoute("Wand", "Lamp");
    }
    ~Flow()
    {
        Trovio::Root::get().removeSlot("Wand");
        Trovio::Root::get().removeSlot("Lamp");
    }
    Flow(const Flow&) = delete;
    Flow& operator=(const Flow&) = delete;

    /// Returns how often memory was asked for.
    std::uint64_t pushARound()
    {
        const AllocationCount allocations;
        for (std::uint64_t i = 0; i < perRound; ++i)
            _from.push(Trovio::Data(1.5, Trovio::Time(double(i))));
        return allocations.since();
    }

    Trovio::OutSlot<double> _from{"from"};
    Trovio::InSlot<double> _to{"to"};
};

/// How many records the server says that the first client got, or lost.
std::uint64_t countOf(ServerBench& bench, const std::string& fate)
{
    BenchClient asker(bench);
    asker.send("GET /metrics HTTP/1.1\r\nHost: h\r\nConnection: close\r\n\r\n");
    const std::string text = asker.readAll();
    const std::string sample = "{client=\"1 foxglove.websocket.v1\",fate=\"" + fate + "\"} ";
    const auto at = text.find(sample);
    EXPECT_NE(at, text.npos) << text;
    return at == text.npos ? 0 : std::stoull(text.substr(at + sample.size()));
}

// Half a minute of records, as fast as they go.
TEST(StuckClient, LosesRecordsThatAreCountedAndCostsTheFlowNothing)
{
    ServerBench bench;
    Flow flow;
    WebSocketClient stuck(bench, "foxglove.websocket.v1");
    stuck.nextJson();
    stuck.nextJson();
    stuck.say({{"op", "subscribe"}, {"subscriptions", {{{"id", 1}, {"channelId", 1}}}}});
    bench.round();
    const std::uint64_t before = residentBytes();
    std::uint64_t allocations = 0, resident = before;
    for (std::uint64_t pushed = 0; pushed < all; pushed += perRound) {
        allocations += flow.pushARound();
        bench.round();
        resident = std::max(resident, residentBytes());
    }
    EXPECT_EQ(allocations, 0U) << "on the thread that pushes";
#if !defined(OSTREL_ADDRESS_SANITIZER) // which keeps what was freed
    EXPECT_LT(resident - before, maxMore);
#endif
    EXPECT_EQ(flow._from.getActivity()._written, all);
    EXPECT_EQ(flow._to.getCounts().stored, all);
    EXPECT_GT(countOf(bench, "dropped"), all / 2) << "it does not read";

    stuck.say({{"op", "unsubscribe"}, {"subscriptionIds", {1}}}); // and no round tells it anything any more
    std::uint64_t got = 0, told = 0;
    while (got + told < all) {
        const std::string message = stuck.next();
        ASSERT_FALSE(message.empty()) << got << " and " << told;
        if (message[0] == 1)
            ++got;
        else
            told = std::stoull(message.substr(message.find("reached: ") + 9));
    }
    EXPECT_EQ(got + told, all);
    EXPECT_EQ(countOf(bench, "sent"), got);
    EXPECT_EQ(countOf(bench, "dropped"), told);
}
} // namespace
