#include "nodes/dds/net/DdsLog.h"
#include "nodes/dds/net/LoopbackOnly.h"
#include "nodes/shared/FileDescriptor.h"
#include "nodes/shared/SocketAddress.h"
#include "tests/dds/DdsFixture.h"
#include "tests/nodes/SampleValues.h"
#include "tests/support/Says.h"
#include "trovio/SlotTypes.h"
#include <csignal>
#include <dds/ddsrt/log.h>
#include <list>
#include <net/if.h>
#include <sys/resource.h>
#include <sys/socket.h>

namespace Trovio::Nodes {
namespace {

using DdsNodeTest = DdsFixture;

/// One topic of each type: "T0 Bool, T1 Color, …".
std::string topicOfEachType()
{
    std::string list;
    int number = 0;
    forEachSlotType([&]<class T>(TypeTag<T>) {
        list += (number > 0 ? ", T" : "T") + std::to_string(number) + " " + TypeName<T>::getName();
        ++number;
    });
    return list;
}

TEST_F(DdsNodeTest, EveryTypeArrivesEqualWithItsStamp)
{
    DdsPeer reader("subscribe='" + topicOfEachType() + "' label=reader");
    DdsPeer writer("publish='" + topicOfEachType() + "' label=writer");
    int number = 0;
    forEachSlotType([&]<class T>(TypeTag<T>) {
        const std::string topic = "/T" + std::to_string(number++);
        Probe<T> probe("reader" + topic);
        Feed<T> feed("writer" + topic);
        double stamp = 1'700'000'000.125;
        for (const T& value : sampleValues<T>()) {
            feed.push(value, ++stamp);
            const Data<T> arrived = probe.next();
            EXPECT_TRUE(isSame(arrived.getValue(), value)) << TypeName<T>::getName();
            EXPECT_EQ(arrived.getTimeStamp(), Time(stamp)) << TypeName<T>::getName();
        }
    });
}

TEST_F(DdsNodeTest, LateJoinerGetsTheLastValueOnly)
{
    DdsPeer writer("publish='Wand Float' label=writer");
    Feed<float> feed("writer/Wand");
    for (int i = 1; i <= 3; ++i)
        feed.push(static_cast<float>(i), i);
    writer.awaitCount("out samples", 3);

    DdsPeer reader("subscribe='Wand Float' label=reader");
    Probe<float> probe("reader/Wand");
    EXPECT_EQ(probe.next().getValue(), 3.0F);
    feed.push(4.0F, 4.0);
    const Data<float> next = probe.next();
    EXPECT_EQ(next.getValue(), 4.0F);
    EXPECT_EQ(next.getTimeStamp(), Time(4.0));
    EXPECT_EQ(reader.count("in missed"), 0U);
}

/// Holds up whoever pushes into it while it is closed.
class Gate final : public BufferedInSlot<long> {
public:
    Gate() : BufferedInSlot("gate", 4096) {}
    void newData() override { _closed.wait(true); }
    void setClosed(bool closed)
    {
        _closed = closed;
        _closed.notify_all();
    }

private:
    std::atomic<bool> _closed{false};
};

TEST_F(DdsNodeTest, SamplesOfManyAllArriveThoughOnePushIsHeldUp)
{
    constexpr int count = 100; // more than the default depth
    DdsPeer reader("subscribe='Wand Long' label=reader");
    Gate gate;
    Root::get().addInSlot("gate", &gate);
    Root::get().addRoute("reader/Wand", "gate");
    std::list<DdsPeer> writers;
    std::list<Feed<long>> feeds;
    for (int i = 0; i < count; ++i)
        feeds.emplace_back(writers.emplace_back("publish='Wand Long' label=writer" + std::to_string(i)).getLabel() +
                           "/Wand");
    const auto pushAll = [&](long value) {
        for (Feed<long>& feed : feeds)
            feed.push(value, 1.0);
    };
    pushAll(1);
    reader.awaitCount("in samples", count);
    gate.setClosed(true);
    pushAll(2);
    for (DdsPeer& writer : writers) // the record is about to be written
        await([&] { return writer->inspect()._slots.at(0)._in->_counts.taken == 2; });
    gate.setClosed(false);
    for (DdsPeer& writer : writers)
        writer.awaitCount("out samples", 2);
    EXPECT_EQ(reader.count("in samples"), 2U * count);
    Root::get().removeRoute("reader/Wand", "gate");
    Root::get().removeSlot("gate");
}

TEST_F(DdsNodeTest, TopicsInACircleDoNotLockUp)
{
    DdsPeer here("publish='Forth Long' subscribe='Back Long' label=here");
    DdsPeer there("publish='Back Long' subscribe='Forth Long' label=there");
    Root::get().addRoute("there/Forth", "there/Back");
    Probe<long> probe("here/Back");
    Feed<long> feed("here/Forth");
    for (long i = 1; i <= 500; ++i) {
        feed.push(i, static_cast<double>(i));
        while (probe.next().getValue() != i) {
        }
    }
    Root::get().removeRoute("there/Forth", "there/Back");
}

TEST_F(DdsNodeTest, RecordThatIsTooLargeIsLeftOut)
{
    DdsPeer reader("subscribe='Scan Float[]' label=reader largest=4096");
    DdsPeer writer("publish='Scan Float[]' label=writer largest=4096");
    Probe<SharedVector<float>> probe("reader/Scan");
    Feed<SharedVector<float>> feed("writer/Scan");
    for (const std::size_t length : {2000U, 3U}) {
        SharedVector<float> numbers;
        *numbers = std::vector<float>(length, 1.0F);
        feed.push(numbers, 1.0);
    }
    EXPECT_EQ(probe.next().getValue()->size(), 3U);
    EXPECT_EQ(writer.count("out failed"), 1U);
}

TEST_F(DdsNodeTest, PublisherThatLeavesIsMissedAndComesBack)
{
    DdsPeer reader("subscribe='Wand Float' label=reader");
    Probe<bool> alive("reader/Wand/alive");
    EXPECT_FALSE(alive.next().getValue());
    reader.awaitReason("nobody publishes Wand in domain");

    DdsPeer writer("publish='Wand Float' label=writer");
    EXPECT_TRUE(alive.next().getValue());
    reader.awaitRunning();
    writer.stop();
    EXPECT_FALSE(alive.next().getValue());
    reader.awaitReason("nobody publishes Wand in domain");
    writer.standAgain();
    EXPECT_TRUE(alive.next().getValue());
    reader.awaitRunning();
}

TEST_F(DdsNodeTest, TroubleOfOneTopicIsNotThatOfAnother)
{
    DdsPeer reader("subscribe='Wand Float, Buzz Float' label=reader");
    DdsPeer writer("publish='Wand Float' label=writer");
    reader.awaitReason("nobody publishes Buzz in domain");
    const OutSlot<float> wand("Wand"), buzz("Buzz"), alive("Buzz/alive");
    EXPECT_FALSE(reader->getStateOf(wand)._degraded);
    EXPECT_FALSE(reader->getStateOf(alive)._degraded);
    EXPECT_TRUE(says(reader->getStateOf(buzz)._reason, "nobody publishes Buzz"));
}

TEST(DdsEndsThatDoNotMeet, BothSayWhy)
{
    const struct {
        const char *_reader, *_writer, *_seenByReader, *_seenByWriter;
    } rows[] = {
        {"'Wand Color'", "'Wand Vec3f'", "publishes Vec3f, here it is Color", "subscribes to Color, here it is Vec3f"},
        {"'Wand Float'", "'Wand Float[]'", "publishes Float[], here it is Float",
         "subscribes to Float, here it is Float[]"},
        {"'Wand Float'", "'Wand Float' reliable=no", "publishes Float with reliable=no, here it is reliable=yes",
         "subscribes to Float with reliable=yes, here it is reliable=no"}};
    for (const auto& row : rows) {
        const OpenRoot root;
        DdsPeer reader(std::string("subscribe=") + row._reader + " label=reader");
        DdsPeer writer(std::string("publish=") + row._writer + " label=writer");
        const std::string process = "(process " + std::to_string(::getpid()) + " on ";
        reader.awaitReason(row._seenByReader);
        writer.awaitReason(row._seenByWriter);
        EXPECT_TRUE(says(reader.state()._reason, process));
        writer.stop();
        reader.awaitReason("nobody publishes Wand");
    }
}

TEST(DdsTopicThatNobodyPublishes, NamesWhoMayMeanIt)
{
    const struct {
        const char *_writer, *_partition, *_told;
    } rows[] = {
        {"publish='Wand Float'", "stage", "publishes it (Float) in partition stage, here it is in partition test-"},
        {"publish='wand Float'", "", "publishes wand (Float) in partition test-"},
        {"publish='Wand Float' ros2=yes", "", "here it is Wand; set ros2=yes here"},
        {"publish='Quaternion Float'", "", "of 1 other node there these are published: Quaternion (Float)"}};
    for (const auto& row : rows) {
        const OpenRoot root;
        const std::string partition = *row._partition ? row._partition : partitionOfTest();
        const StandingNode<DdsNode> writer(std::make_unique<DdsNode>(Clock::system()),
                                           std::string(row._writer) + " label=writer lease=0.5 domain=" +
                                               std::to_string(domainOfTest()) + " partition=" + partition);
        DdsPeer reader("subscribe='Wand Float' label=reader");
        reader.awaitReason(row._told);
        const std::string reason = reader.state()._reason;
        EXPECT_TRUE(says(reason, "nobody publishes Wand in domain"));
        const bool isMeant = std::string(row._told).find("of 1 other node") == std::string::npos;
        EXPECT_EQ(reason.find("interface=NAME") == std::string::npos, isMeant) << reason;
    }
}

TEST_F(DdsNodeTest, WhatIsMissingIsToldBeforeTheLeaseIsOver)
{
    DdsPeer reader("subscribe='Wand Float' label=reader", "60");
    const Probe<float> probe("reader/Wand");
    Explanation found;
    await([&] {
        found = Root::get().explain("reader/Wand", "probe of reader/Wand");
        return found._text.find("; nobody publishes it so far in domain") != std::string::npos;
    });
    EXPECT_EQ(found._verdict, Verdict::NeverWritten);
    EXPECT_EQ(found.findNumber("settles"), 60.0);
}

TEST_F(DdsNodeTest, WantOfDescriptorsIsSaidAndOvercome)
{
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit few = before;
    few.rlim_cur = static_cast<rlim_t>(FileDescriptor(::dup(0)).get() + 5); // the first that is free, and 4 more
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    DdsPeer node("publish='A Float'");
    node.awaitReason("it takes 16 file descriptors and");
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    node.awaitRunning();
}

TEST(DdsLogDeathTest, LastWordsOfTheLibraryAreHeldBackByNobody)
{
    DdsLog::takeOver();
    const DdsLog::Listening nobody;
    EXPECT_EXIT(DDS_FATAL("no more threads\n"), ::testing::KilledBySignal(SIGABRT),
                "DDS: the library ends this program: no more threads");
}

TEST_F(DdsNodeTest, OtherSettingsForAnOpenDomainWaitUntilItCloses)
{
    DdsPeer first("publish='A Float' label=first");
    first.awaitRunning();
    Feed<float> feed("first/A");
    feed.push(1.0F, 1.0);
    first.awaitCount("out samples", 1);
    DdsPeer second("publish='B Float' label=second largest=4096");
    second.awaitReason("another node of this program has already opened domain");
    first.stop();
    second.awaitRunning();
}

TEST_F(DdsNodeTest, MissingInterfaceIsNamed)
{
    DdsPeer node("publish='A Float' interface=nosuch0");
    node.awaitReason("on interface nosuch0");
    node.awaitReason("choose a network interface of this machine with interface=NAME");
}

TEST_F(DdsNodeTest, LoopbackSocketsOfTheDomainAloneTakeNothingFromOtherInterfaces)
{
    DdsDomainSettings domain;
    domain._number = domainOfTest();
    domain._processes = 32; // as is the default
    const FileDescriptor other(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const auto port = SocketAddress::parse("0.0.0.0", static_cast<std::uint16_t>(7400 + 250 * domain._number + 50));
    ASSERT_EQ(::bind(other.get(), port->get(), port->getLength()), 0);
    DdsPeer node("publish='A Float' label=node");
    Feed<float> feed("node/A");
    feed.push(1.0F, 1.0);
    node.awaitCount("out samples", 1);
    const auto sockets = findSocketsAt(domain);
    EXPECT_GE(sockets.size(), 3U);
    for (const auto& [number, socket] : sockets) {
        char device[IFNAMSIZ] = "";
        socklen_t length = sizeof(device);
        ASSERT_EQ(::getsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, device, &length), 0);
        EXPECT_STREQ(device, socket == other.get() ? "" : "lo");
    }
}

TEST(DdsSettingsRefused, WithWhatIsAllowed)
{
    expectRefused(std::make_unique<DdsNode>(Clock::system()), "",
                  {{"", "unless 'subscribe' has one"},
                   {"publish='9lives Float'", "a letter or _"},
                   {"publish='Wand Vec5f'", "one of Bool, "},
                   {"publish='A Float' subscribe='A Float'", "both have A"},
                   {"publish='A/alive Bool' subscribe='A Float'", "both have A/alive"},
                   {"subscribe='A Float, A/alive Bool'", "/alive or /timing behind it"},
                   {"publish='A Float' interface='<lo/>'", "the name of a network"},
                   {"publish='A Float' host='10.0.0.1 <wand>'", "names or addresses"},
                   {"publish='A Float' host='10.0.0.1 ::1'", "one kind"},
                   {"ros2=yes publish='A Color'", "for A one of the types that have a message: Bool"},
                   {"ros2=yes timing=yes subscribe='A Bool'", "nobody to ask for the time"},
                   {"ros2=yes publish='A/1 Bool'", "but not A/1"},
                   {"publish='A Float' partition='*'", "of the characters"}});
}

} // namespace
} // namespace Trovio::Nodes
