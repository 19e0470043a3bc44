#include "host/SceneReader.h"

#include "host/SceneText.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>

using namespace Host;

namespace {

std::string problemsOf(const std::string& text)
{
    try {
        parseScene(text, "s");
    } catch (const SceneError& error) {
        return error.what();
    }
    return "";
}

struct RefusedRow {
    const char* _name;
    const char* _text;
    const char* _expected; // start of the message
};
class SceneRefused : public ::testing::TestWithParam<RefusedRow> {};

TEST_P(SceneRefused, WithPlaceAndReason)
{
    const RefusedRow& row = GetParam();
    EXPECT_EQ(problemsOf(row._text).substr(0, std::string(row._expected).size()), row._expected);
}

#define SENSOR "[[sensor]]\nname = \"a\"\ntype = \"SFFloat\"\n"
#define SENSOR_B "[[sensor]]\nname = \"b\"\ntype = \"SFVec3f\"\n"
#define HANDLER "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"

INSTANTIATE_TEST_SUITE_P(
    Keys, SceneRefused,
    ::testing::Values(
        RefusedRow{"Syntax", "[host]\nrate = \n", "s:2:"},
        RefusedRow{"UnknownTable", "[[sensr]]\n",
                   "s:1:3: unknown key 'sensr'; allowed: host, handler, sensor, route, link; nearest: 'sensor'"},
        RefusedRow{"UnknownKey", SENSOR "lable = \"A\"\n",
                   "s:4:1: unknown key 'lable' in [[sensor]]; allowed: name, type, label, description, value, buffer, "
                   "output; nearest: 'label'"},
        RefusedRow{"UnknownKeyWithControls", "[host]\n\"a\\u001b\" = 1\n",
                   "s:2:1: unknown key 'a\\x1b' in [host]; allowed: rate"},
        RefusedRow{"MissingKey", "\n[[sensor]]\nname = \"a\"\n",
                   "s:2:1: [[sensor]] lacks 'type', which must be a text, a field type such as \"SFVec3f\""},
        RefusedRow{"EmptyName", "[[sensor]]\ntype = \"SFFloat\"\nname = \"\"\n",
                   "s:3:8: 'name' of [[sensor]] holds the text ''; allowed: a text that is not empty"},
        RefusedRow{"WrongType", SENSOR "output = 1\n",
                   "s:4:10: 'output' of [[sensor]] holds the whole number 1; allowed: true or false"},
        RefusedRow{"TableInsteadOfList", "[sensor]\nname = \"a\"\n",
                   "s:1:2: 'sensor' is a table; allowed: tables, each under [[sensor]]"},
        RefusedRow{"ListOfNumbers", "sensor = [1]\n", "s:1:11: the whole number 1 is no [[sensor]]; allowed: a table"},
        RefusedRow{"BufferTooLarge", SENSOR "buffer = 1000001\n", "s:4:10: 'buffer' of [[sensor]] holds the whole "},
        RefusedRow{"BufferNegative", SENSOR "buffer = -1\n",
                   "s:4:10: 'buffer' of [[sensor]] holds the whole number -1"},
        RefusedRow{"RateZero", "[host]\nrate = 0\n", "s:2:8: 'rate' of [host] holds the whole number 0; allowed: fra"},
        RefusedRow{"RateNan", "[host]\nrate = nan\n", "s:2:8: 'rate' of [host] holds the number nan; allowed: frames"},
        RefusedRow{"NodeIsNoPair", HANDLER "nodes = [[\"OSC\"], \"x\"]\n", "s:4:19: 'nodes' of [[handler]] holds the "},
        RefusedRow{"RouteWithOneEnd", HANDLER "routes = [[\"A\"]]\n",
                   "s:4:11: 'routes' of [[handler]] holds a list of "},
        RefusedRow{"SettingsOfWrongType", HANDLER "nodes = [[\"OSC\", 7]]\n",
                   "s:4:18: 'nodes' of [[handler]] holds the w"}),
    [](const auto& row) { return std::string(row.param._name); });

INSTANTIATE_TEST_SUITE_P(
    Rules, SceneRefused,
    ::testing::Values(
        RefusedRow{"UnknownFieldType", "[[sensor]]\nname = \"a\"\ntype = \"SFVec3\"\n",
                   "s:3:8: unknown field type 'SFVec3' of sensor 'a'; allowed: SFBool, "},
        RefusedRow{"SensorTwice", SENSOR "\n" SENSOR,
                   "s:6:8: the sensor name 'a' is already used in line 2; allowed: one that no other sensor has"},
        RefusedRow{"HandlerTwice", HANDLER HANDLER, "s:6:8: the handler name 'h' is already used in line 3"},
        RefusedRow{"LabelTwice", SENSOR "label = \"L\"\n" SENSOR_B "label = \"L\"\n",
                   "s:8:9: the label 'L' is already used in line 4"},
        RefusedRow{"BadUrl", HANDLER "url = \"no url\"\n", "s:4:7: the URL 'no url' of handler 'h' cannot be used: "},
        RefusedRow{"BadPattern", HANDLER "routes = [[\"A\", \"B*\"]]\n",
                   "s:4:12: the route from 'A' to 'B*' cannot be used: "},
        RefusedRow{"EmptyPattern", "[[route]]\nfrom = \"\"\nto = \"B\"\n",
                   "s:2:8: 'from' of [[route]] holds the text ''"},
        RefusedRow{"ValueOfWrongType", SENSOR "value = \"x\"\n",
                   "s:4:9: the value of sensor 'a' holds the text 'x'; allowed for SFFloat: a number"},
        RefusedRow{"ValueOfWrongLength", SENSOR_B "value = [1, 2]\n",
                   "s:4:9: the value of sensor 'b' holds a list of 2; allowed for SFVec3f: [x, y, z]"},
        RefusedRow{"ValueWithWrongElement", SENSOR_B "value = [1, true, 2]\n",
                   "s:4:13: the value of sensor 'b' holds true; allowed for SFVec3f: [x, y, z]"},
        RefusedRow{"LinkWithoutField", SENSOR "[[link]]\nfrom = \"a\"\nto = \"a.value\"\n",
                   "s:5:8: 'a' names no field of the scene; allowed: \"SENSOR.value\""},
        RefusedRow{"LinkToUnknown", SENSOR "[[link]]\nfrom = \"aa.value\"\nto = \"a.value\"\n",
                   "s:5:8: 'aa.value' names no field of the scene; allowed: \"SENSOR.value\""},
        RefusedRow{"LinkOfDifferentTypes", SENSOR SENSOR_B "[[link]]\nfrom = \"a.value\"\nto = \"b.value\"\n",
                   "s:9:6: 'b.value' is of type SFVec3f and cannot take 'a.value' of type SFFloat"},
        RefusedRow{"LinkToItself", SENSOR "[[link]]\nfrom = \"a.value\"\nto = \"a.value\"\n",
                   "s:6:6: 'a.value' is linked to itself"}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(SceneReader, ReadsTheSceneOfTheManual)
{
    const SceneFile scene = parseScene(
        "[host]\nrate = 30\n" HANDLER
        "nodes = [[\"OSC\", \"listen=127.0.0.1:9000\"], [\"Generator\"]]\nroutes = [[\"OSC/x\", \"A\"]]\n" SENSOR
        "label = \"A\"\nbuffer = 16\nvalue = 3\noutput = true\n" SENSOR_B
        "[[route]]\nfrom = \"Context/*\"\nto = \"C/*\"\n",
        "s");
    EXPECT_EQ(scene._host._rate._value, 30);
    ASSERT_EQ(scene._handlers.size(), 1u);
    EXPECT_EQ(scene._handlers[0]._url._value, "file:.");
    ASSERT_EQ(scene._handlers[0]._nodes.size(), 2u);
    EXPECT_EQ(scene._handlers[0]._nodes[0]._second._value, "listen=127.0.0.1:9000");
    EXPECT_EQ(scene._handlers[0]._nodes[1]._second._value, "");
    EXPECT_EQ(scene._handlers[0]._routes[0]._second._value, "A");
    ASSERT_EQ(scene._sensors.size(), 2u);
    EXPECT_EQ(scene._sensors[0]._buffer._value, 16u);
    EXPECT_TRUE(scene._sensors[0]._output._value);
    EXPECT_FALSE(scene._sensors[1]._output._value);
    EXPECT_EQ(scene._routes[0]._first._value, "Context/*");
}

TEST(SceneReader, SaysEverythingInTheOrderOfTheFile)
{
    const std::string said = problemsOf("[[sensor]]\nname = \"a\"\ntype = 3\nbuffer = true\n[host]\nrate = -1\n");
    EXPECT_NE(said.find("s:3:8: "), std::string::npos);
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
    EXPECT_NE(problemsOf(nested(deepestNesting)), deep);
    EXPECT_EQ(problemsOf(nested(deepestNesting + 1)), deep);
    EXPECT_NE(problemsOf(dotted(deepestNesting - 1)).find("unknown key"), std::string::npos);
    EXPECT_NE(problemsOf(dotted(deepestNesting + 1)).find("nests deeper"), std::string::npos);
    EXPECT_NE(problemsOf(nested(1'000'000)).find("nests deeper"), std::string::npos);
    EXPECT_NE(problemsOf("x = [1.5, 2.5" + std::string(1000, ',')).find("s:1:"), std::string::npos);
}

TEST(SceneReader, RefusesFilesThatItCannotRead)
{
    EXPECT_THROW(readScene("no/such/file.toml"), SceneError);
    EXPECT_THROW(readScene("/dev"), SceneError);
    EXPECT_THROW(readScene("/dev/zero"), SceneError); // endless
}
} // namespace
