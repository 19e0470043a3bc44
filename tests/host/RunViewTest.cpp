#include "host/output/RunLog.h"
#include "host/show/View.h"
#include "osg/LogMessage.h"
#include "ostrel/FieldTypes.h"
#include "tests/support/Says.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace Host;
using namespace Scenes;

namespace {

void log(int level, const char* module, const char* text)
{
    osg::logMessage(level, {module, "unit", 7, "f()"}, "%s\n", text);
}

TEST(RunLog, ShowsWhatConcernsThePersonAtTheTerminal)
{
    const std::string plain = "listening\\x1b\nWARNING Ostrel unit:7: odd\n";
    const std::string everything =
        "LOG Ostrel unit:7: chatter\nLOG Trovio unit:7: listening\\x1b\nWARNING Ostrel unit:7: odd\n";
    for (const bool verbose : {false, true})
        for (const bool held : {false, true}) { // above a table
            testing::internal::CaptureStderr();
            RunLog runLog(verbose);
            runLog.hold(held);
            log(osg::LogAlways, "Ostrel", "chatter");
            log(osg::LogAlways, "Trovio", "listening\x1b");
            log(osg::LogWarning, "Ostrel", "odd");
            const std::string taken = runLog.take();
            const std::string written = testing::internal::GetCapturedStderr();
            EXPECT_EQ(held ? taken : written, verbose ? everything : plain);
            EXPECT_EQ(held ? written : taken, "");
        }
}

/// The bytes that a table view wrote, and the sensor that it shows.
class TableViewTest : public ::testing::Test {
protected:
    void change(double time) { _watch.notify(time, nullptr, nullptr, nullptr); }
    std::string shown()
    {
        std::string text = _out.str();
        _out.str("");
        return text;
    }

    Ostrel::DirectSensor _sensor{std::make_unique<Ostrel::SFFloat>()};
    SensorWatch _watch{_sensor, ""};
    std::ostringstream _out;
    bool _taken = true; // what was drawn last
};

TEST_F(TableViewTest, CountsValuesPerSecond)
{
    const auto view = makeTableView(_out, {}, watchedSensors({&_watch}));
    view->frame(100);
    EXPECT_TRUE(says(shown(), "  0.0         -\n"));
    for (int i = 0; i < 30; ++i)
        change(100.5);
    view->frame(100.75);
    EXPECT_EQ(shown(), "");
    view->frame(102);
    EXPECT_TRUE(says(shown(), " 15.0     1.5 s\n"));
}

TEST_F(TableViewTest, IsDrawnInPlaceBelowTheMessages)
{
    RunLog runLog(false);
    const auto view =
        makeTableView(_out, {true, &runLog, nullptr, [this] { return _taken; }}, watchedSensors({&_watch}));
    view->frame(100);
    EXPECT_TRUE(shown().starts_with("sensor "));
    view->frame(100.1);
    EXPECT_EQ(shown(), "");
    log(osg::LogWarning, "Ostrel", "odd");
    _taken = false;
    view->frame(100.3);
    EXPECT_EQ(shown(), "") << "nobody has seen the last one yet";
    _taken = true;
    view->frame(100.4);
    EXPECT_TRUE(shown().starts_with("\x1b[2A\r\x1b[JWARNING Ostrel unit:7: odd\nsensor "));
}
} // namespace
