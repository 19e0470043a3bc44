#include "monitor/Recorder.h"
#include "monitor/codec/Encode.h"
#include "monitor/mcap/format/FileTime.h"
#include "monitor/mcap/read/Reader.h"
#include "tests/recording/RecordingFolder.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include "trovio/Values.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using namespace Monitor;
using namespace Trovio;

constexpr double firstStamp = 1.7e9; // seconds

/// What a recording holds, topic by topic.
class Held final : public Mcap::Visitor {
public:
    void channel(const Mcap::Channel& channel) override { _topics[channel._id] = channel._topic; }
    void message(const Mcap::Message& message) override
    {
        const std::string& topic = _topics[message._channel];
        ++_counts[topic];
        if (topic == "@gaps")
            _notKept += nlohmann::json::parse(Mcap::asText(message._data))["notKept"].get<std::uint64_t>();
        if (topic != "scene/value")
            return;
        std::string problem;
        const double before = std::exchange(_last, 0);
        _good = _good && decode(message._data, _last, problem) && _last > before &&
                Mcap::secondsOf(message._publishTime) == firstStamp + _last / 7 && message._logTime >= _arrival;
        _arrival = message._logTime;
    }
    void attachment(const Mcap::Attachment& attachment, std::uint64_t, std::uint64_t) override
    {
        _attached = attachment._name + ": " + std::string(Mcap::asText(attachment._data));
    }

    std::map<std::uint16_t, std::string> _topics;
    std::map<std::string, std::uint64_t> _counts;
    std::uint64_t _notKept = 0, _arrival = 0;
    double _last = 0;
    bool _good = true; // values come in order, each with its stamp
    std::string _attached;
};

/// A root with an out-slot "scene/value" and one that is not asked for.
class RecorderTest : public testing::Test {
protected:
    RecorderTest()
    {
        Root::init();
        auto space = std::make_unique<Namespace>();
        space->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        space->addOutSlot("value", &_value);
        space->addOutSlot("other", &_other);
        Root::get().addNamespace("scene", std::move(space));
    }
    ~RecorderTest() override { Root::shutdown(); }

    RecordingOrder order(std::size_t memory = 1 << 20) const { return {_folder.file("a.mcap"), "*/value", memory}; }
    Held held() const
    {
        const auto file = Mcap::InputFile::open(_folder.file("a.mcap"));
        Held held;
        const Mcap::FileState state = Mcap::Reader(*file, held).read();
        EXPECT_TRUE(state._problem.empty() && state._indexed) << state._problem;
        return held;
    }
    // Values 1, 2, …, each with the stamp that follows from it.
    void push(int records)
    {
        for (int i = 1; i <= records; ++i)
            _value.push(Data<double>(i, Time(firstStamp + i / 7.0)));
    }

    const RecordingFolder _folder;
    OutSlot<double> _value{"value"};
    OutSlot<double> _other{"other"};
    std::vector<std::string> _said;
};

TEST_F(RecorderTest, KeepsRecordsFramesAndTextsOfTheSlotsThatFit)
{
    const auto texts = [] { return RecorderOptions::Pairs{{"scene.toml", "[host]"}}; };
    Recorder recorder({"test 1", {{"machine", "here"}}, texts, {}});
    recorder.frame(1, 99.0); // nothing is recorded yet
    recorder.start(order());
    push(1000);
    _other.push(Data<double>(1, Time(1)));
    recorder.frame(2, 100.0);
    recorder.frame(3, 100.5);
    EXPECT_TRUE(recorder.status()._isRecording);
    const RecorderStatus status = recorder.stop();
    push(5); // nobody looks any more
    EXPECT_FALSE(_value.isActive());
    EXPECT_FALSE(status._isRecording);
    EXPECT_EQ(status._problem, "");
    EXPECT_EQ(status._records, 1000U);
    EXPECT_EQ(status._slots, 1U);
    const Held file = held();
    EXPECT_TRUE(file._good);
    EXPECT_EQ(file._last, 1000);
    EXPECT_EQ(file._counts,
              (std::map<std::string, std::uint64_t>{{"scene/value", 1000}, {"@frames", 2}, {"@clocks", 1}}));
    EXPECT_EQ(file._attached, "scene.toml: [host]");
}

// The taps are so small that most records find them full.
TEST_F(RecorderTest, CountsWhatItCouldNotKeep)
{
    Recorder recorder;
    recorder.start(order(1000));
    push(100'000);
    const RecorderStatus status = recorder.stop();
    const Held file = held();
    EXPECT_TRUE(file._good);
    EXPECT_GT(file._notKept, 0U);
    EXPECT_EQ(file._counts.at("scene/value") + file._notKept, 100'000U);
    EXPECT_EQ(status._notKept, file._notKept);
}

TEST_F(RecorderTest, RefusesASecondFileOneThatExistsAndAPatternThatIsNone)
{
    Recorder first, second;
    first.start(order());
    RecordingOrder other = order();
    other.path = _folder.file("b.mcap");
    EXPECT_THROW(first.start(other), std::runtime_error);
    EXPECT_THROW(second.start(order()), std::runtime_error);
    other.slots = "";
    EXPECT_THROW(second.start(other), std::runtime_error);
    EXPECT_FALSE(std::filesystem::exists(other.path));
    EXPECT_FALSE(second.status()._isRecording);
}

TEST_F(RecorderTest, MakesOneFileAfterTheOtherAndTellsOfEach)
{
    Recorder recorder({{}, {}, {}, [this](const std::string& line) { _said.push_back(line); }});
    for (const char* const name : {"b.mcap", "a.mcap"}) {
        recorder.start({_folder.file(name), "*", 1 << 20});
        push(7);
        recorder.stop();
    }
    EXPECT_EQ(recorder.stop()._path, _folder.file("a.mcap"));
    EXPECT_EQ(held()._counts.at("scene/value"), 8U); // the newest one from before comes first
    ASSERT_EQ(_said.size(), 4U);
    EXPECT_NE(_said.back().find("a.mcap': slots 2, records 8, "), std::string::npos) << _said.back();
}
} // namespace
