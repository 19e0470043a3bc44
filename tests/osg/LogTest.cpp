#include "osg/Log.h"

#include "osg/LogMessage.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using Texts = std::vector<std::string>;
constexpr osg::LogPlace place{"Ostrel", "some/Unit", 12, "void f(int)"};

void warn(const std::string& text)
{
    osg::logMessage(osg::LogWarning, place, "%s\n", text.c_str());
}

/// What a plain-stream line of the library does.
void writeStreamLine(const char* module, int level, const std::string& text)
{
    osg::Log::_pLogLock->acquire();
    auto& stream = osg::osgLogP->checkModule(module) ? osg::osgLogP->stream(level) : osg::osgLogP->nilStream();
    stream << text << std::flush;
    osg::Log::_pLogLock->release();
}

/// A log file of its own and the standard header again at the end.
class LogFile : public ::testing::Test {
protected:
    LogFile() { EXPECT_TRUE(osg::osgLogP->setLogFile(_path, _problem)) << _problem; }
    ~LogFile() override
    {
        osg::osgLogP->setLogFile("", _problem);
        osg::osgLogP->setHeader("level,module,file,line", _problem);
        std::remove(_path.c_str());
    }

    Texts lines() const
    {
        std::ifstream file(_path);
        Texts result;
        for (std::string line; std::getline(file, line);)
            result.push_back(line);
        return result;
    }

    const std::string _path = ::testing::TempDir() + "log" + std::to_string(getpid());
    std::string _problem;
};

TEST_F(LogFile, HeaderShowsTheSelectedPartsInTheirOrder)
{
    ASSERT_TRUE(osg::osgLogP->setHeader("function,level", _problem)) << _problem;
    EXPECT_FALSE(osg::osgLogP->setHeader("level,colour", _problem));
    EXPECT_TRUE(says(_problem, "'colour'")) << "and the header stays";
    warn("x");
    EXPECT_EQ(lines(), (Texts{"WARNING void f(int): x"}));
}

TEST_F(LogFile, ArgumentsCannotBreakTheLineWhateverTheirLength)
{
    osg::osgLogP->setHeader("none", _problem);
    warn("a\nFATAL: b\r\t\x1b[31m\x7f \xc2\x9b \xc3\xa9");
    osg::logMessage(osg::LogWarning, place, "%s", "no end\n");
    warn(std::string(100'000, 'x'));
    EXPECT_EQ(lines(),
              (Texts{"a\\nFATAL: b\\r\\t\\x1b[31m\\x7f \\xc2\\x9b \xc3\xa9", "no end\\n", std::string(100'000, 'x')}));
    const LogCapture capture;
    warn("a\x1b\n");
    EXPECT_EQ(capture.texts(), (Texts{"a\x1b\n\n"})) << "a hook sees the message as it was";
}

TEST_F(LogFile, LinesOfManyThreadsStayWhole)
{
    constexpr int messages = 200;
    osg::osgLogP->setHeader("none", _problem);
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'})
        threads.emplace_back([letter] {
            for (int i = 0; i < messages; ++i) {
                warn(std::string(50, letter));
                writeStreamLine("Ostrel", 0, "stream\n");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    const Texts all = lines();
    EXPECT_EQ(all.size(), threads.size() * 2 * messages);
    for (const std::string& line : all)
        EXPECT_TRUE(line == "stream" || line == std::string(50, line[0])) << line;
}

TEST_F(LogFile, InformationGoesToTheFileEvenWhenItIsNotShown)
{
    osg::osgLogP->setInfoShown(false);
    osg::logMessage(osg::LogAlways, place, "in the file\n");
    osg::osgLogP->setLogFile("", _problem);
    ::testing::internal::CaptureStderr();
    osg::logMessage(osg::LogAlways, place, "nowhere\n");
    warn("shown");
    osg::osgLogP->setInfoShown(true);
    writeStreamLine("Ostrel", 0, "shown, too\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "WARNING Ostrel some/Unit:12: shown\nshown, too\n");
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(LogFile, FullDiskSendsTheLogToStandardError)
{
    ASSERT_TRUE(osg::osgLogP->setLogFile("/dev/full", _problem));
    ::testing::internal::CaptureStderr();
    warn("first");
    warn("second");
    const std::string written = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(written.starts_with("WARNING: the log file cannot be written"));
    EXPECT_TRUE(written.ends_with("Unit:12: first\nWARNING Ostrel some/Unit:12: second\n")) << written;
}

TEST_F(LogFile, PipeThatNobodyReadsHoldsUpNobody)
{
    const std::string pipe = _path + ".pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(osg::osgLogP->setLogFile(pipe, _problem));
    EXPECT_EQ(_problem, "cannot open log file '" + pipe + "': it is a pipe that nobody reads; start its reader first");
    const int stopped = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_TRUE(osg::osgLogP->setLogFile(pipe, _problem)) << _problem;
    ::testing::internal::CaptureStderr();
    warn(std::string(1 << 20, 'x')); // more than a pipe holds
    const std::string written = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(written.starts_with("WARNING: the log file cannot be written")) << written.substr(0, 100);
    EXPECT_GT(written.size(), std::size_t{1} << 20) << "the line that did not fit, too";
    ASSERT_TRUE(osg::osgLogP->setLogFile(pipe, _problem)) << _problem;
    close(stopped);
    ::testing::internal::CaptureStderr();
    warn("the reader has gone"); // and the program has not
    EXPECT_TRUE(
        says(::testing::internal::GetCapturedStderr(), "the log goes on here\nWARNING Ostrel some/Unit:12: the"));
    std::remove(pipe.c_str());
}

TEST(Log, StreamHandsOnWholeLinesThatTheLevelAdmits)
{
    const LogCapture capture(osg::LogWarning);
    writeStreamLine("Ostrel", 2, "begin, ");
    EXPECT_TRUE(capture.texts().empty());
    writeStreamLine("Ostrel", 2, "end\nsecond\n");
    writeStreamLine("Ostrel", 3, "not admitted\n");
    EXPECT_EQ(capture.texts(), (Texts{"begin, end\n", "second\n"}));
}

TEST(Log, EnvironmentSetsTheStartAndRefusesWhatItCannot)
{
    struct Row {
        const char *_variable, *_value;
        int _level;
        const char* _complaint;
    };
    for (const Row& row : {Row{"OSG_LOG_LEVEL", "4", 4, ""}, Row{"OSG_LOG_LEVEL", "6", 2, "allowed are 0 to 5"},
                           Row{"OSG_LOG_LEVEL", "", 2, "level ''"}, Row{"OSG_LOG_LEVEL", "1\n", 2, "level '1\\n'"},
                           Row{"OSG_LOG_FILE", "/no/such/folder/x", 2, "cannot open log file '/no/such/folder/x'"},
                           Row{"OSG_LOG_HEADER", "none", 2, ""}, Row{"OSG_LOG_HEADER", "", 2, "unknown part ''"}}) {
        setenv(row._variable, row._value, 1);
        ::testing::internal::CaptureStderr();
        const osg::Log log;
        const std::string complaint = ::testing::internal::GetCapturedStderr();
        unsetenv(row._variable);
        EXPECT_EQ(log.getLogLevel(), row._level) << row._value;
        EXPECT_EQ(complaint.empty(), *row._complaint == '\0') << complaint;
        EXPECT_TRUE(says(complaint, row._complaint));
    }
}

double secondsByHand = 0;

TEST(LogLimit, TellsOfEachSourceWhatItHeldBack)
{
    const LogCapture capture;
    const auto clockBefore = osg::setLogClock([] { return secondsByHand; });
    osg::osgLogP->limit().setRate(3);
    constexpr osg::LogPlace chatty{"Trovio", "nodes/Chatty", 1, "f"}, quiet{"Trovio", "nodes/Quiet", 2, "g"};
    const auto say = [](const osg::LogPlace& source, int level, int count) {
        for (int i = 0; i < count; ++i)
            osg::logLimited(level, source, "x\n");
    };
    auto toldSince = [&capture, seen = std::size_t{0}]() mutable {
        Texts texts = capture.texts();
        texts.erase(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(std::exchange(seen, texts.size())));
        return texts;
    };
    const std::string held = "more messages from here; at most 3 a second are written (OSG_LOG_RATE)\n";

    say(chatty, osg::LogWarning, 1000);
    EXPECT_EQ(toldSince(), Texts(3, "x\n"));
    say(quiet, osg::LogWarning, 2);
    say(chatty, osg::LogFatal, 5);
    say(chatty, osg::LogAlways, 5);
    osg::logMessage(osg::LogWarning, chatty, "x\n");
    EXPECT_EQ(toldSince(), Texts(13, "x\n")) << "another source, the levels that always pass, what nobody limits";
    secondsByHand += 0.999;
    osg::logHeldBack();
    EXPECT_EQ(toldSince(), Texts());
    secondsByHand += 0.001;
    say(quiet, osg::LogNotice, 1);
    EXPECT_EQ(toldSince(), (Texts{"held back 997 " + held, "x\n"}));
    say(chatty, osg::LogNotice, 4);
    EXPECT_EQ(toldSince(), Texts(3, "x\n"));
    osg::logHeldBack(true);
    EXPECT_EQ(toldSince(), Texts{"held back 1 " + held});
    EXPECT_EQ(capture.entries().back()._file, "nodes/Chatty");
    osg::setLogClock(clockBefore);
}

} // namespace
