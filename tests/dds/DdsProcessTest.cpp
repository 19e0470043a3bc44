#include "nodes/shared/SocketAddress.h"
#include "tests/dds/DdsFixture.h"
#include "tests/host/HostProcess.h"
#include "tests/nodes/SampleValues.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"
#include "trovio/SlotTypes.h"
#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace Trovio::Nodes {
namespace {

TEST(DdsHostileSample, NeverReachesTheSlot)
{
    const struct {
        const char *_name, *_type; // what the peer is told to send
        const char* _refusal;      // empty where the DDS library refuses it before the node sees it
    } rows[] = {{"cutVector", "Vec3f[]", "no multiple of 3"},
                {"noNumberInside", "Vec3f[]", "number 3 is nan"},
                {"noNumber", "Float", "number 1 is nan"},
                {"noTime", "Float", "time stamp"},
                {"farTime", "Float", "time stamp"},
                {"unknownFormat", "Image", "unknown format 3"},
                {"hugePicture", "Image", "4294967295 x 4294967295"},
                {"endlessText", "String", ""},
                {"falseLengths", "String[]", ""}};
    for (const auto& row : rows) {
        const OpenRoot root;
        const LogCapture log;
        DdsPeer reader(std::string("subscribe='Target ") + row._type + "' label=reader");
        HostProcess peer(HOSTILE_PEER, {std::to_string(domainOfTest()), partitionOfTest(), row._name});
        ASSERT_TRUE(peer.waitFor("sent")) << peer.err();
        EXPECT_EQ(peer.wait(), 0);
        withSlotType(row._type, [&row]<class T>(TypeTag<T>) {
            const T good = sampleValues<T>().back();
            Probe<T> probe("reader/Target");
            DdsPeer writer(std::string("publish='Target ") + row._type + "' label=writer");
            Feed<T> feed("writer/Target");
            feed.push(good, 7.0);
            const Data<T> arrived = probe.next();
            EXPECT_TRUE(isSame(arrived.getValue(), good));
            EXPECT_EQ(arrived.getTimeStamp(), Time(7.0));
        });
        EXPECT_EQ(reader.count("in refused"), *row._refusal ? 1U : 0U);
        const auto texts = log.texts();
        EXPECT_TRUE(std::ranges::any_of(texts, [&row](const auto& text) {
            return text.find(row._refusal) != text.npos;
        })) << ::testing::PrintToString(texts);
        EXPECT_EQ(reader.count("in samples"), 1U);
    }
}

std::string sceneOf(const std::string& nodes, const std::string& rest)
{
    return "[[handler]]\nkind = 'Trovio'\nname = 'h'\nnodes = [ " + nodes + " ]\n" + rest;
}

std::string publisher(const std::string& value, const std::string& settings = apart())
{
    return sceneOf(R"(["Generator", "type=Float rate=50 amplitude=0 offset=)" + value +
                       R"("], ["DDS", "publish='Wand Float')" + settings + R"("])",
                   "[[route]]\nfrom = 'Context/Generator/value'\nto = 'Context/DDS/Wand'\n");
}

std::string subscriber(const std::string& settings = apart())
{
    return sceneOf(R"(["DDS", "subscribe='Wand Float')" + settings + R"("])",
                   "routes = [ ['DDS/Wand', 'Wand'] ]\n"
                   "[[sensor]]\nname = 'wand'\ntype = 'SFFloat'\nlabel = 'Wand'\n");
}

TEST(DdsHosts, KilledPublisherIsNoticedAndItsSuccessorHeard)
{
    const SceneOnDisk reading(subscriber()), writing(publisher("11")), after(publisher("22"));
    HostProcess reader(HOST_PROGRAM, {"run", reading.path(), "--format", "lines", "--verbose"});
    HostProcess first(HOST_PROGRAM, {"run", writing.path()});
    ASSERT_TRUE(reader.waitFor("SFFloat 11\n")) << reader.err();
    EXPECT_TRUE(says(reader.err(), "on interface lo, this machine only; interface=NAME"));
    first.signal(SIGKILL);
    ASSERT_TRUE(reader.waitFor("is degraded: nobody publishes Wand in domain")) << reader.err();
    HostProcess second(HOST_PROGRAM, {"run", after.path()});
    ASSERT_TRUE(reader.waitFor("SFFloat 22\n")) << reader.err();
    reader.signal(SIGTERM);
    EXPECT_EQ(reader.wait(), 0) << reader.err();
    EXPECT_TRUE(says(reader.err(), "in repeated 0, in refused 0"));
    EXPECT_TRUE(says(reader.err(), "slot 'Context/DDS/Wand': "));
}

TEST(DdsHosts, MeetByNameAndOverIPv6)
{
    for (const std::string host : {"::1", "localhost"}) {
        const std::string settings = apart() + " host=" + host;
        if (!SocketAddress::parse(host, 0) && ::access("/etc/hosts", R_OK) != 0)
            continue;
        const SceneOnDisk reading(subscriber(settings)), writing(publisher("33", settings));
        HostProcess reader(HOST_PROGRAM, {"run", reading.path(), "--format", "lines"});
        HostProcess writer(HOST_PROGRAM, {"run", writing.path()});
        EXPECT_TRUE(reader.waitFor("SFFloat 33\n")) << host << ": " << reader.err();
    }
}

} // namespace
} // namespace Trovio::Nodes
