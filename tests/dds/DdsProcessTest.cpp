#include "nodes/shared/SocketAddress.h"
#include "tests/dds/DdsFixture.h"
#include "tests/host/HostProcess.h"
#include "tests/nodes/SampleValues.h"
#include "tests/support/LogCapture.h"
#include "trovio/SlotTypes.h"
#include <csignal>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace Trovio::Nodes {
namespace {

struct Hostile {
    const char* _name; // what the peer is told to send
    const char* _type;
    const char* _refusal; // empty where the DDS library refuses it before the node sees it
};
class DdsHostileSample : public DdsFixture, public ::testing::WithParamInterface<Hostile> {
protected:
    template <class T>
    void expectOnly(const T& good)
    {
        Probe<T> probe("reader/Target");
        DdsPeer writer(std::string("publish='Target ") + GetParam()._type + "' label=writer");
        Feed<T> feed("writer/Target");
        feed.push(good, 7.0);
        const Data<T> arrived = probe.next();
        EXPECT_TRUE(isSame(arrived.getValue(), good));
        EXPECT_EQ(arrived.getTimeStamp(), Time(7.0));
    }
};

TEST_P(DdsHostileSample, NeverReachesTheSlot)
{
    const Hostile& row = GetParam();
    const LogCapture log;
    DdsPeer reader(std::string("subscribe='Target ") + row._type + "' label=reader");
    HostProcess peer(HOSTILE_PEER, {std::to_string(domainOfTest()), partitionOfTest(), row._name});
    ASSERT_TRUE(peer.waitFor("sent")) << peer.err();
    EXPECT_EQ(peer.wait(), 0);
    withSlotType(row._type, [this]<class T>(TypeTag<T>) { expectOnly<T>(sampleValues<T>().back()); });
    EXPECT_EQ(reader.count("in refused"), *row._refusal ? 1U : 0U);
    const auto texts = log.texts();
    EXPECT_TRUE(std::any_of(texts.begin(), texts.end(), [&row](const std::string& text) {
        return text.find(row._refusal) != std::string::npos;
    })) << ::testing::PrintToString(texts);
    EXPECT_EQ(reader.count("in samples"), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Dds, DdsHostileSample,
    ::testing::Values(Hostile{"cutVector", "Vec3f[]", "no multiple of 3"},
                      Hostile{"noNumberInside", "Vec3f[]", "number 3 is nan"},
                      Hostile{"noNumber", "Float", "number 1 is nan"}, Hostile{"noTime", "Float", "time stamp"},
                      Hostile{"farTime", "Float", "time stamp"}, Hostile{"unknownFormat", "Image", "unknown format 3"},
                      Hostile{"hugePicture", "Image", "4294967295 x 4294967295"}, Hostile{"endlessText", "String", ""},
                      Hostile{"falseLengths", "String[]", ""}),
    [](const auto& row) { return std::string(row.param._name); });

/// Scenes in a folder of their own.
class DdsHostsTest : public ::testing::Test {
protected:
    DdsHostsTest() { std::filesystem::create_directories(_folder); }
    ~DdsHostsTest() override { std::filesystem::remove_all(_folder); }

    std::string write(const std::string& name, const std::string& nodes, const std::string& rest)
    {
        const auto path = _folder / (name + ".toml");
        std::ofstream(path) << "[[handler]]\nkind = 'Trovio'\nname = '" << name << "'\nnodes = [ " << nodes << " ]\n"
                            << rest;
        return path;
    }
    std::string publisher(const std::string& value, const std::string& settings = apart())
    {
        return write("publisher" + value,
                     R"(["Generator", "type=Float rate=50 amplitude=0 offset=)" + value +
                         R"("], ["DDS", "publish='Wand Float')" + settings + R"("])",
                     "[[route]]\nfrom = 'Context/Generator/value'\nto = 'Context/DDS/Wand'\n");
    }

    const std::filesystem::path _folder =
        std::filesystem::path(::testing::TempDir()) / ("dds-" + std::to_string(::getpid()));
};

TEST_F(DdsHostsTest, KilledPublisherIsNoticedAndItsSuccessorHeard)
{
    const std::string subscriber =
        write("subscriber", R"(["DDS", "subscribe='Wand Float')" + apart() + R"("])",
              "routes = [ ['DDS/Wand', 'Wand'] ]\n[[sensor]]\nname = 'wand'\ntype = 'SFFloat'\nlabel = 'Wand'\n");
    HostProcess reader(HOST_PROGRAM, {"run", subscriber, "--format", "lines", "--verbose"});
    HostProcess first(HOST_PROGRAM, {"run", publisher("11")});
    ASSERT_TRUE(reader.waitFor("SFFloat 11\n")) << reader.err();
    EXPECT_NE(reader.err().find("on interface lo, this machine only; interface=NAME"), std::string::npos);
    first.signal(SIGKILL);
    ASSERT_TRUE(reader.waitFor("is degraded: nobody publishes Wand in domain")) << reader.err();
    HostProcess second(HOST_PROGRAM, {"run", publisher("22")});
    ASSERT_TRUE(reader.waitFor("SFFloat 22\n")) << reader.err();
    reader.signal(SIGTERM);
    EXPECT_EQ(reader.wait(), 0) << reader.err();
    EXPECT_NE(reader.err().find("in repeated 0, in refused 0"), std::string::npos) << reader.err();
    EXPECT_NE(reader.err().find("slot 'Context/DDS/Wand': "), std::string::npos) << reader.err();
}

TEST_F(DdsHostsTest, MeetByNameAndOverIPv6)
{
    for (const std::string host : {"::1", "localhost"}) {
        const std::string settings = apart() + " host=" + host;
        if (!SocketAddress::parse(host, 0) && ::access("/etc/hosts", R_OK) != 0)
            continue;
        const std::string subscriber =
            write("subscriber", R"(["DDS", "subscribe='Wand Float')" + settings + R"("])",
                  "routes = [ ['DDS/Wand', 'Wand'] ]\n[[sensor]]\nname = 'wand'\ntype = 'SFFloat'\nlabel = 'Wand'\n");
        HostProcess reader(HOST_PROGRAM, {"run", subscriber, "--format", "lines"});
        HostProcess writer(HOST_PROGRAM, {"run", publisher("33", settings)});
        EXPECT_TRUE(reader.waitFor("SFFloat 33\n")) << host << ": " << reader.err();
    }
}

} // namespace
} // namespace Trovio::Nodes
