#include "tests/host/HostProcess.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using Json = nlohmann::json;

/// A text as somebody from outside might choose it, as an argument and as it stands between quotes in a scene file.
struct Hostile {
    const char* _name;
    std::string _text, _toml;
    bool _isTaken = true; // as a name in a scene; otherwise the reader refuses it
};

const std::string longText(1U << 16U, 'x');
// Texts begin with "<" and end in "bZ", so that a line that begins with "bZ" was broken in two.
const Hostile texts[] = {
    {"FormatsLinesTerminalsDirectionsQuotes",
     "<%n%s%99999999d {} {0}bZ\nbZ\rbZ\tbZ\x7f\x1b[2J\x1b]0;t\x07\xc2\x9b"
     "31m\xe2\x80\xa8\xe2\x80\xae\xe2\x81\xa6\xe2\x80\x8f\xd8\x9c\"'\\]};//bZ",
     "<%n%s%99999999d {} {0}bZ\\nbZ\\rbZ\\tbZ\\u007f\\u001b[2J\\u001b]0;t\\u0007\\u009b31m"
     "\\u2028\\u202e\\u2066\\u200f\\u061c\\\"'\\\\]};//bZ"},
    {"Long", "<" + longText + "bZ", "<" + longText + "bZ", false},
    {"NotUtf8", "<\xff\xc0\xaf\xed\xa0\x80\xe2\x82]bZ", "<\xff\xc0\xaf\xed\xa0\x80\xe2\x82]bZ", false},
};

std::string sceneOf(const std::string& text)
{
    const std::string quoted = "\"" + text + "\"";
    return "[[handler]]\nkind = \"Trovio\"\nname = " + quoted +
           "\nnodes = [[\"Generator\", \"type=String label=g\"], [\"Scale\", \"label='l" + text + "' gain=2\"]]\n" +
           "routes = [[\"g/out\", " + quoted + "], [" + quoted + ", \"" + text + "2\"]]\n" +
           "[[sensor]]\nname = " + quoted + "\nlabel = " + quoted + "\ntype = \"SFString\"\nvalue = " + quoted + "\n" +
           "[[sensor]]\nname = \"o\"\nlabel = \"" + text + "2\"\ntype = \"SFFloat\"\noutput = true\n";
}

// For each place where the reader refuses something: what it says quotes the text.
std::vector<std::string> badScenes(const std::string& text)
{
    const std::string quoted = "\"" + text + "\"";
    return {"[[sensor]]\nname = \"s\"\nlabel = \"L\"\ntype = " + quoted,
            quoted + " = 1\n",
            "[[handler]]\nkind = " + quoted + "\nname = \"h\"\n",
            "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[" + quoted + ", \"\"]]\n",
            "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[\"Scale\", " + quoted + "]]\n",
            "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[\"OSC\", \"listen=" + text + "\"]]\n",
            "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nurl = " + quoted + "\n"};
}

void expectHarmless(const char* where, const std::string& said)
{
    SCOPED_TRACE(where);
    EXPECT_NO_THROW(Json(said).dump()) << "not UTF-8";
    for (const char* obeyed : {"\x1b", "\r", "\t", "\x7f", "\a", "\xc2\x9b", "\xe2\x80\xa8", "\xe2\x80\xae", "\nbZ"})
        EXPECT_FALSE(says(said, obeyed)) << Json(obeyed).dump(-1, ' ', true);
}

/// Runs the program and looks at everything that it wrote; returns its standard output.
std::string run(const std::vector<std::string>& arguments)
{
    const std::string logFile = ::testing::TempDir() + "hostile" + std::to_string(getpid()) + ".log";
    std::vector<std::string> all = {"OSG_LOG_FILE=" + logFile, "OSG_LOG_LEVEL=5", HOST_PROGRAM};
    all.insert(all.end(), arguments.begin(), arguments.end());
    HostProcess process("/usr/bin/env", all);
    EXPECT_LT(process.wait(), 128) << process.err().substr(0, 1000);
    std::stringstream log;
    log << std::ifstream(logFile).rdbuf();
    std::remove(logFile.c_str());
    expectHarmless("log", log.str());
    expectHarmless("out", process.out());
    expectHarmless("err", process.err());
    return process.out();
}

void expectJson(const std::string& text)
{
    EXPECT_FALSE(text.empty());
    EXPECT_TRUE(Json::accept(text)) << text.substr(0, 1000);
}

class HostileText : public ::testing::TestWithParam<Hostile> {};

TEST_P(HostileText, ComesOutOnOneLineAndIsObeyedByNobody)
{
    const auto& [name, text, toml, isTaken] = GetParam();
    const SceneOnDisk scene(sceneOf(toml));
    const std::string path = scene.path();

    run({"check", path});
    run({"check", path, "--graph", "text"});
    run({"check", path, "--graph", "dot"});
    const std::string graph = run({"check", path, "--graph", "json"});
    run({"run", path, "--frames", "3", "--format", "table", "--verbose"});
    run({"run", path, "--frames", "3", "--format", "lines", "--verbose"});
    const std::string changes = run({"run", path, "--frames", "3", "--rate", "1000", "--format", "json"});
    run({"why", path, text, text + "2", "--seconds", "0.1"});
    const std::string answer = run({"why", path, text, text + "2", "--seconds", "0.1", "--format", "json"});
    for (const std::string& bad : badScenes(toml)) {
        const SceneOnDisk refused(bad);
        run({"check", refused.path()});
    }
    for (const char* verb : {"check", "nodes", "types"})
        run({verb, text});
    run({text});
    run({"run", path, "--format", text});
    run({"run", path, "--rate", text});
    if (!isTaken)
        return;
    expectJson(graph);
    expectJson(answer);
    std::stringstream lines(changes);
    for (std::string line; std::getline(lines, line);)
        expectJson(line);
}

INSTANTIATE_TEST_SUITE_P(Of, HostileText, ::testing::ValuesIn(texts),
                         [](const auto& row) { return std::string(row.param._name); });
} // namespace
