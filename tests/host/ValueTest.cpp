#include "host/show/Json.h"
#include "ostrel/FieldClass.h"
#include "ostrel/FieldTypes.h"
#include "scene/file/InitialValue.h"
#include "scene/toml/Problems.h"
#include "scene/toml/TomlValue.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace Host;
using namespace Scenes;

namespace {

TomlValue tomlValue(const std::string& text)
{
    Problems problems("s");
    const TomlValue root = parseToml("value = " + text, problems);
    problems.throwIfAny();
    return std::get<TomlValue::Table>(root._data).at(0)._value;
}

std::string jsonOf(Ostrel::Field& field)
{
    const std::string line = jsonLine({0, {}}, {}, field);
    const std::size_t at = line.find("\"value\":") + 8;
    return line.substr(at, line.size() - at - 2);
}

TEST(Value, TravelsFromSceneToJsonAndTable)
{
    struct Row {
        const char *_type, *_scene, *_json, *_few, *_all;
    };
    for (const Row& row :
         {Row{"MFBool", "[true, false]", "[true,false]", "[2] true, false", "[2] true, false"},
          Row{"SFColor", "[1, 0.5, 0]", "[1.0,0.5,0.0]", "1 0.5 0", "1 0.5 0"},
          Row{"SFDouble", "1.600000023841858", "1.600000023841858", "1.6", "1.600000023841858"},
          Row{"SFDouble", "0.30000000000000004", "0.30000000000000004", "0.3", "0.30000000000000004"},
          Row{"SFDouble", "-0.0", "-0.0", "0", "-0"}, Row{"SFDouble", "1e5", "100000.0", "100000", "100000"},
          Row{"SFFloat", "1.6", "1.6", "1.6", "1.6"},
          Row{"SFFloat", "16777217", "16777216.0", "1.67772e+07", "16777216"},
          Row{"MFFloat", "[1e30, nan, -inf]", "[1e+30,null,null]", "[3] 1e+30, nan, -inf", "[3] 1e+30, nan, -inf"},
          Row{"MFFloat", "[]", "[]", "[0]", "[0]"},
          Row{"SFInt32", "-2147483648", "-2147483648", "-2147483648", "-2147483648"},
          Row{"SFMatrix3f", "[1, 2, 3, 4, 5, 6, 7, 8, 9]", "[1.0,2.0,3.0,4.0,5.0,6.0,7.0,8.0,9.0]",
              "1 2 3; 4 5 6; 7 8 9", "1 2 3 4 5 6 7 8 9"},
          Row{"SFString", "\"a\\u0007\\\"\\u00e4\"", "\"a\\u0007\\\"\u00e4\"", "'a\\x07\"\u00e4'", "'a\\x07\"\u00e4'"},
          Row{"MFString", "[\"a\", \"b\"]", "[\"a\",\"b\"]", "[2] 'a', 'b'", "[2] 'a', 'b'"},
          Row{"SFTime", "1700000000.25", "1700000000.25", "2023-11-14T22:13:20.250Z", "1700000000.25"},
          Row{"MFTime", "[12.5, 1e300]", "[12.5,1e+300]", "[2] 12.5, 1e+300", "[2] 12.5, 1e+300"},
          Row{"MFVec2d", "[[1, 2], [3, 4]]", "[[1.0,2.0],[3.0,4.0]]", "[2] 1 2, 3 4", "[2] 1 2, 3 4"}}) {
        const auto field = Ostrel::FieldClass::find(std::string_view(row._type))->create();
        ASSERT_EQ(setInitialValue(*field, tomlValue(row._scene)), nullptr) << row._type;
        EXPECT_EQ(jsonOf(*field), row._json);
        EXPECT_EQ(valueText(*field, Digits::Few, 100), row._few);
        EXPECT_EQ(valueText(*field, Digits::All, 100), row._all);
        const auto json = nlohmann::json::parse(row._json);
        EXPECT_EQ(valueText(json, *Ostrel::FieldClass::find(std::string_view(row._type)), Digits::All, 100),
                  json.dump().find("null") == std::string::npos ? row._all : "[3] 1e+30, null, null");
    }
}

TEST(ValueRefused, WhereItDoesNotFit)
{
    const std::pair<const char*, const char*> rows[] = {
        {"SFBool", "1"},           {"SFFloat", "1e300"},     {"SFFloat", "true"},   {"SFInt32", "1.5"},
        {"SFInt32", "2147483648"}, {"SFString", "[]"},       {"SFImage", "[]"},     {"SFNode", "\"a\""},
        {"MFVec3f", "[1, 2, 3]"},  {"SFMatrix4d", "[1, 2]"}, {"SFRotation", "[1]"}, {"SFTime", "1979-05-27"}};
    for (const auto& [type, scene] : rows) {
        const auto field = Ostrel::FieldClass::find(std::string_view(type))->create();
        EXPECT_NE(setInitialValue(*field, tomlValue(scene)), nullptr) << type << " = " << scene;
    }
}

TEST(ValueText, OfWhatNoSceneCanSay)
{
    Ostrel::SFString text;
    text.value() = "\xff\x1b[2J";
    EXPECT_EQ(jsonOf(text), "\"\uFFFD\\u001b[2J\"");
    EXPECT_EQ(valueText(text, Digits::Few, 100), "'\\xff\\x1b[2J'");

    Ostrel::SFImage image;
    image.value()->set(osg::Image::Rgb, 2, 3);
    EXPECT_EQ(jsonOf(image), "{\"bytes\":18,\"format\":\"RGB\",\"height\":3,\"width\":2}");
    EXPECT_EQ(valueText(image, Digits::Few, 100), "2x3 RGB");

    Ostrel::MFInt32 many;
    many.values().assign(1000, 7);
    EXPECT_EQ(valueText(many, Digits::Few, 10), "[1000] 7, 7, …");
}

// Flat positions: what a scene writes as row 0, column 1 is where the runtime keeps it, column by column.
TEST(ValueText, OfMatrixIsRowByRow)
{
    Ostrel::SFMatrix3f matrix;
    ASSERT_EQ(setInitialValue(matrix, tomlValue("[0, 5, 0, 0, 0, 0, 0, 0, 0]")), nullptr);
    EXPECT_EQ(matrix.value().data()[3], 5);
}

} // namespace
