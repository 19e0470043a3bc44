#include "osg/Log.h"

#include "osg/LogMessage.h"
#include "osg/LogText.h"
#include "tests/support/LogCapture.h"
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace {

using Texts = std::vector<std::string>;
constexpr osg::LogPlace place{"Ostrel", "some/Unit", 12, "void f(int)"};

/// A log file of its own and the standard header again at the end.
class LogFile : public ::testing::Test {
protected:
    LogFile() : _path(std::filesystem::path(::testing::TempDir()) / ("log" + std::to_string(getpid())))
    {
        std::string problem;
        EXPECT_TRUE(osg::osgLogP->setLogFile(_path, problem)) << problem;
    }
    ~LogFile() override
    {
        std::string problem;
        osg::osgLogP->setLogFile("", problem);
        osg::osgLogP->setHeader("level,module,file,line", problem);
        std::filesystem::remove(_path);
    }

    Texts lines() const
    {
        std::ifstream file(_path);
        Texts result;
        for (std::string line; std::getline(file, line);)
            result.push_back(line);
        return result;
    }

    const std::filesystem::path _path;
};

/// What a plain-stream line of the library does.
void writeStreamLine(const char* module, int level, const std::string& text)
{
    osg::Log::_pLogLock->acquire();
    auto& stream = osg::osgLogP->checkModule(module) ? osg::osgLogP->stream(level) : osg::osgLogP->nilStream();
    stream << text << std::flush;
    osg::Log::_pLogLock->release();
}

TEST_F(LogFile, HeaderShowsTheSelectedParts)
{
    struct Row {
        const char* _parts;
        const char* _expected;
    };
    for (const Row& row : {Row{"level,module,file,line", "WARNING Ostrel some/Unit:12: x"},
                           Row{"function,level", "WARNING void f(int): x"}, Row{"none", "x"}}) {
        std::string problem;
        ASSERT_TRUE(osg::osgLogP->setHeader(row._parts, problem)) << problem;
        osg::logMessage(osg::LogWarning, place, "x\n");
        EXPECT_EQ(lines().back(), row._expected);
    }
    std::string problem;
    EXPECT_FALSE(osg::osgLogP->setHeader("level,colour", problem));
    EXPECT_NE(problem.find("'colour'"), std::string::npos);
    osg::logMessage(osg::LogWarning, place, "still none\n");
    EXPECT_EQ(lines().back(), "still none");
}

TEST_F(LogFile, ArgumentsCannotBreakTheLine)
{
    std::string problem;
    osg::osgLogP->setHeader("none", problem);
    osg::logMessage(osg::LogWarning, place, "name %s\n", "a\nFATAL: b\r\t\x1b[31m\x7f \xc2\x9b \xc3\xa9");
    osg::logMessage(osg::LogWarning, place, "%s", "no end\n");
    EXPECT_EQ(lines(), (Texts{"name a\\nFATAL: b\\r\\t\\x1b[31m\\x7f \\xc2\\x9b \xc3\xa9", "no end\\n"}));
}

TEST_F(LogFile, LongMessageStaysWhole)
{
    const std::string text(100'000, 'x');
    osg::logMessage(osg::LogFatal, place, "%s|%d\n", text.c_str(), 7);
    ASSERT_EQ(lines().size(), 1U);
    EXPECT_TRUE(lines()[0].ends_with(text + "|7"));
}

TEST_F(LogFile, LinesOfManyThreadsStayWhole)
{
    constexpr int messages = 200;
    std::string problem;
    osg::osgLogP->setHeader("none", problem);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < messages; ++i) {
                osg::logMessage(osg::LogWarning, place, "%s\n", std::string(50, static_cast<char>('a' + t)).c_str());
                writeStreamLine("Ostrel", 0, "stream\n");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    const Texts all = lines();
    EXPECT_EQ(all.size(), 4U * 2 * messages);
    for (const std::string& line : all)
        EXPECT_TRUE(line == "stream" || line == std::string(50, line[0])) << line;
}

TEST_F(LogFile, InformationGoesToTheFileEvenWhenItIsNotShown)
{
    std::string problem;
    osg::osgLogP->setInfoShown(false);
    osg::logMessage(osg::LogAlways, place, "in the file\n");
    osg::osgLogP->setLogFile("", problem);
    ::testing::internal::CaptureStderr();
    osg::logMessage(osg::LogAlways, place, "nowhere\n");
    osg::logMessage(osg::LogWarning, place, "shown\n");
    osg::osgLogP->setInfoShown(true);
    writeStreamLine("Ostrel", 0, "shown, too\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "WARNING Ostrel some/Unit:12: shown\nshown, too\n");
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(LogFile, FullDiskSendsTheLogToStandardError)
{
    std::string problem;
    ASSERT_TRUE(osg::osgLogP->setLogFile("/dev/full", problem));
    ::testing::internal::CaptureStderr();
    osg::logMessage(osg::LogWarning, place, "first\n");
    osg::logMessage(osg::LogWarning, place, "second\n");
    const std::string written = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(written.starts_with("WARNING: the log file cannot be written"));
    EXPECT_TRUE(written.ends_with("Unit:12: first\nWARNING Ostrel some/Unit:12: second\n")) << written;
}

TEST(Log, HookSeesTheMessageAsItWas)
{
    const LogCapture capture;
    osg::logMessage(osg::LogFatal, place, "bad %s\n", "a\x1b\n");
    const auto entries = capture.entries();
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0]._level, osg::LogFatal);
    EXPECT_EQ(entries[0]._module, "Ostrel");
    EXPECT_EQ(entries[0]._file, "some/Unit");
    EXPECT_EQ(entries[0]._line, 12U);
    EXPECT_EQ(entries[0]._function, "void f(int)");
    EXPECT_EQ(entries[0]._text, "bad a\x1b\n\n");
}

TEST(Log, LevelKeepsBackWhatIsLessSevere)
{
    const LogCapture capture(osg::LogWarning);
    for (int level = 0; level <= osg::LogDebug; ++level) {
        osg::logMessage(level, place, "message %d\n", level);
        writeStreamLine("Ostrel", level, "line " + std::to_string(level) + "\n");
    }
    EXPECT_EQ(capture.texts(),
              (Texts{"message 0\n", "line 0\n", "message 1\n", "line 1\n", "message 2\n", "line 2\n"}));
    EXPECT_FALSE(osg::osgLogP->setLogLevel(6));
    EXPECT_FALSE(osg::osgLogP->setLogLevel(-1));
    EXPECT_EQ(osg::osgLogP->getLogLevel(), osg::LogWarning);
}

TEST(Log, StreamHandsOnWholeLinesOfAcceptedModules)
{
    const LogCapture capture;
    writeStreamLine("Ostrel", 0, "begin, ");
    EXPECT_TRUE(capture.texts().empty());
    writeStreamLine("Ostrel", 0, "end\nsecond\n");
    osg::osgLogP->muteModule("Ostrel", true);
    writeStreamLine("Ostrel", 0, "muted\n");
    writeStreamLine("Other", 0, "other\n");
    osg::osgLogP->muteModule("Ostrel", false);
    writeStreamLine("Ostrel", 0, "back\n");
    EXPECT_EQ(capture.texts(), (Texts{"begin, end\n", "second\n", "other\n", "back\n"}));
    EXPECT_EQ(capture.entries()[0]._file, "");
}

TEST(Log, EnvironmentSetsTheStartAndRefusesWhatItCannot)
{
    struct Row {
        const char* _variable;
        const char* _value;
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
        EXPECT_NE(complaint.find(row._complaint), std::string::npos) << complaint;
    }
}

} // namespace
