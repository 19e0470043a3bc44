#include "scene/file/SceneReader.h"
#include "tests/support/Says.h"

#include "scene/file/SceneMemory.h"
#include "scene/toml/SceneText.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sstream>

using namespace Scenes;

namespace {

std::string problemsOf(const std::string& text)
{
    return problemOf<SceneError>([&text] { parseScene(text, "s"); });
}

#define SENSOR "[[sensor]]\nname = \"a\"\ntype = \"SFFloat\"\n"
#define SENSOR_B "[[sensor]]\nname = \"b\"\ntype = \"SFVec3f\"\n"
#define HANDLER "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"

TEST(SceneReader, RefusesWithPlaceAndReason)
{
    // Each line: a scene, with ; for the end of a line, and the beginning of what is said to it.
    std::istringstream rows(R"ROWS(
[host]; rate =  => s:2:
[[sensr]] => s:1:3: unknown key 'sensr'; allowed: host, handler, sensor, route, link; nearest: 'sensor'
$S; lable = "A" => s:4:1: unknown key 'lable' in [[sensor]]; allowed: name, type, label, description, value, buffer, o
[host]; "a\u001b" = 1 => s:2:1: unknown key 'a\x1b' in [host]; allowed: rate
; [[sensor]]; name = "a" => s:2:1: [[sensor]] lacks 'type', which must be a text, a field type such as "SFVec3f"
[[sensor]]; type = "SFFloat"; name = "" => s:3:8: 'name' of [[sensor]] holds the text ''; allowed: a text that is not
$S; output = 1 => s:4:10: 'output' of [[sensor]] holds the whole number 1; allowed: true or false
[sensor]; name = "a" => s:1:2: 'sensor' is a table; allowed: tables, each under [[sensor]]
sensor = [1] => s:1:11: the whole number 1 is no [[sensor]]; allowed: a table
$S; buffer = 1000001 => s:4:10: 'buffer' of [[sensor]] holds the whole
[host]; rate = 0 => s:2:8: 'rate' of [host] holds the whole number 0; allowed: fra
[host]; rate = nan => s:2:8: 'rate' of [host] holds the number nan; allowed: frames
[host]; memory = "2 GB" => s:2:10: 'memory' of [host] holds the text '2 GB'; allowed: a text such as
[host]; memory = "18446744073709551617 MiB" => s:2:10: 'memory'
[host]; memory = 1 => s:2:10: 'memory' of [host] holds the whole number 1
$H; nodes = [["OSC"], "x"] => s:4:19: 'nodes' of [[handler]] holds the
$H; routes = [["A"]] => s:4:11: 'routes' of [[handler]] holds a list of
[[sensor]]; name = "a"; type = "SFVec3" => s:3:8: unknown field type 'SFVec3' of sensor 'a'; allowed: SFBool,
$S; ; $S => s:6:8: the sensor name 'a' is already used in line 2; allowed: one that no other sensor has
$S; label = "L"; $V; label = "L" => s:8:9: the label 'L' is already used in line 4
$S; label = "@L" => s:4:9: the label '@L' of sensor 'a' cannot be used: labels that begin with '@' belong to tools; use
$H; routes = [["A", "@L"]] => s:4:17: the end '@L' of a route cannot be used: labels that begin with '@'
$H; url = "no url" => s:4:7: the URL 'no url' of handler 'h' cannot be used:
$H; routes = [["A", "B*"]] => s:4:12: the route from 'A' to 'B*' cannot be used:
[[route]]; from = ""; to = "B" => s:2:8: 'from' of [[route]] holds the text ''
$S; value = "x" => s:4:9: the value of sensor 'a' holds the text 'x'; allowed for SFFloat: a number
$V; value = [1, 2] => s:4:9: the value of sensor 'b' holds a list of 2; allowed for SFVec3f: [x, y, z]
$V; value = [1, true, 2] => s:4:13: the value of sensor 'b' holds true; allowed for SFVec3f: [x, y, z]
$S; [[link]]; from = "a"; to = "a.value" => s:5:8: 'a' names no field of the scene; allowed: "SENSOR.value"
$S; $V; [[link]]; from = "a.value"; to = "b.value" => s:9:6: 'b.value' is of type SFVec3f and cannot take 'a.value' of
$S; [[link]]; from = "a.value"; to = "a.value" => s:6:6: 'a.value' is linked to itself
)ROWS");
    std::string row;
    for (std::getline(rows, row); std::getline(rows, row);) {
        const std::size_t middle = row.find(" => ");
        std::string text = row.substr(0, middle) + "\n";
        const std::string expected = row.substr(middle + 4);
        for (const auto& [mark, meaning] : {std::pair("; ", "\n"), std::pair("$S\n", SENSOR),
                                            std::pair("$V\n", SENSOR_B), std::pair("$H\n", HANDLER)})
            for (std::size_t at = text.find(mark); at != text.npos; at = text.find(mark))
                text.replace(at, std::strlen(mark), meaning);
        EXPECT_EQ(problemsOf(text).substr(0, expected.size()), expected) << text;
    }
}

TEST(SceneReader, SaysEverythingInTheOrderOfTheFile)
{
    const std::string said = problemsOf("[[sensor]]\nname = \"a\"\ntype = 3\nbuffer = true\n[host]\nrate = -1\n");
    EXPECT_TRUE(says(said, "s:3:8: "));
    EXPECT_LT(said.find("s:3:8: "), said.find("\ns:4:10: "));
    EXPECT_LT(said.find("\ns:4:10: "), said.find("\ns:6:8: "));
}

TEST(SceneReader, NestsUpToItsLimit)
{
    const auto nested = [](std::size_t depth) {
        return "x = " + std::string(depth, '[') + std::string(depth, ']') + "\n";
    };
    const auto dotted = [](std::size_t depth) {
        std::string key = "a";
        for (std::size_t i = 0; i < depth; ++i)
            key += ".a";
        return key + " = 1.5 # [[[\ns = \"[.[.[\\\"\"\nt = '''\n[[[''' ";
    };
    const std::string deep = "s:1:133: nests deeper than 128 levels, the most that a scene may have";
    EXPECT_NE(problemsOf(nested(maxNesting)), deep);
    EXPECT_EQ(problemsOf(nested(maxNesting + 1)), deep);
    EXPECT_TRUE(says(problemsOf(dotted(maxNesting - 1)), "unknown key"));
    // A text that ends in quotes of its own must not hide what follows it.
    for (const std::string& text : {dotted(maxNesting + 1), "x = {a = \"\"\"b\"\"\"\", " + dotted(200),
                                    "x = {a = \'\'\'b\'\'\'\', " + dotted(200), nested(1'000'000)})
        EXPECT_TRUE(says(problemsOf(text), "nests deeper"));
}

TEST(SceneReader, RefusesOneMoreThanItsLimits)
{
    const auto numbered = [](std::size_t count, const std::string& before, const std::string& after) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i)
            text += before + std::to_string(i) + after;
        return text;
    };
    const auto nodes = [&](std::size_t count) {
        return HANDLER "nodes = [" + numbered(count, "[\"Type", "\"],") + "]\n";
    };
    const std::string sensor = "[[sensor]]\ntype = \"SFBool\"\nname = \"";
    const std::string matrix = "[[sensor]]\ntype = \"SFMatrix4d\"\nname = \"a\"\nlabel = \"A\"\nbuffer = 1000000\n";
    const auto handlers = [&](std::size_t count) {
        return numbered(count, "[[handler]]\nkind = \"Trovio\"\nname = \"", "\"\n");
    };
    const std::string refused = handlers(8) + matrix;
    const struct {
        std::string _allowed, _refused, _expected;
    } rows[] = {
        {numbered(100'000, sensor, "\"\n"), numbered(100'001, sensor, "\"\n"),
         "s:300001:1: the scene has 100001 [[sensor]]; allowed: up to 100000"},
        {handlers(7) + matrix, refused, "s:29:10: the slots and buffers of the sensors take 1.01 GiB (10880"},
        {refused + "[host]\nmemory = \"1100 MiB\"\n", refused + "[host]\nmemory = \"512 MiB\"\n",
         "s:29:10: the slots and buffers of the sensors take 1.01 GiB (10880"},
        {nodes(1'000), nodes(1'001), "s:4:9: 'nodes' of [[handler]] holds a list of 1001; allowed: a "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(problemsOf(row._allowed), "");
        EXPECT_EQ(problemsOf(row._refused).substr(0, row._expected.size()), row._expected);
    }
    const auto together = [&](const std::string& more) {
        return problemOf<SceneError>([&] {
            checkSharedMemory({parseScene(handlers(4) + matrix, "a"), parseScene(handlers(5) + matrix + more, "b")});
        });
    };
    EXPECT_EQ(together("[host]\nmemory = \"2 GiB\"\n"), "");
    EXPECT_TRUE(says(together(""), "b:20:10: the slots and buffers of the sensors of all scenes take 1.14 GiB"));
}

TEST(SceneReader, RefusesFilesThatItCannotRead)
{
    EXPECT_THROW(readScene("no/such/file.toml"), SceneError);
    EXPECT_THROW(readScene("/dev"), SceneError);
    EXPECT_THROW(readScene("/dev/zero"), SceneError); // endless
}
} // namespace
