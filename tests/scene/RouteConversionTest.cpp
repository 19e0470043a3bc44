#include "scene/SceneError.h"
#include "scene/file/SceneReader.h"
#include "tests/support/Says.h"

namespace Scenes {
namespace {

/// A scene with these nodes and routes, the first route in line 5.
std::string sceneWith(const std::string& routes, const std::string& nodes = "")
{
    return "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [" + nodes + "]\nroutes = [" + routes + R"(]
[[sensor]]
name = "wand"
type = "SFVec3f"
label = "Wand"
[[sensor]]
name = "grip"
type = "SFBool"
label = "Grip"
[[sensor]]
name = "rumble"
type = "SFFloat"
label = "Rumble"
output = true
)";
}

/// Its nodes and routes, a line each.
std::string made(const std::string& routes, const std::string& nodes = "")
{
    const SceneFile scene = parseScene(sceneWith(routes, nodes), "s.toml");
    std::string text;
    for (const LocatedPair& node : scene._handlers.at(0)._nodes)
        text += node._first._value + " " + node._second._value + "\n";
    for (const LocatedPair& route : scene._handlers.at(0)._routes)
        text += route._first._value + " -> " + route._second._value + "\n";
    return text;
}

TEST(RouteConversion, BecomesNodesAndRoutesOfTheSensorsType)
{
    const struct {
        const char *_routes, *_nodes, *_expected;
    } rows[] = {
        {R"(["A", "Wand", "Axes unit=cm | OneEuro"], ["B", "Wand"])", "",
         "Axes unit=cm  type='Vec3f' label='Wand~1'\nOneEuro type='Vec3f' label='Wand~2'\n"
         "A -> Wand~1/in\nB -> Wand\nWand~1/out -> Wand~2/in\nWand~2/out -> Wand\n"},
        {R"(["A", "Grip", " Scale gain=2|Convert type=Float|OnChange"])", "",
         "Scale gain=2 type='Float' label='Grip~1'\nConvert type=Float to='Bool' label='Grip~2'\n"
         "OnChange type='Bool' label='Grip~3'\n"
         "A -> Grip~1/in\nGrip~1/out -> Grip~2/in\nGrip~2/out -> Grip~3/in\nGrip~3/out -> Grip\n"},
        {R"(["Rumble", "X/in", "Convert to=Long | Scale"])", "",
         "Convert to=Long  type='Float' label='Rumble~1'\nScale type='Long' label='Rumble~2'\n"
         "Rumble -> Rumble~1/in\nRumble~1/out -> Rumble~2/in\nRumble~2/out -> X/in\n"},
        {R"(["A", "B/x", "Scale type=Float"])", "",
         "Scale type=Float label='B.x~1'\nA -> B.x~1/in\nB.x~1/out -> B/x\n"},
        {R"(["A", "Wand", "Axes"], ["B", "Wand", "Axes"])", R"(["Scale", "label=Wand~1"])",
         "Scale label=Wand~1\nAxes type='Vec3f' label='Wand~2'\nAxes type='Vec3f' label='Wand~3'\n"
         "A -> Wand~2/in\nB -> Wand~3/in\nWand~2/out -> Wand\nWand~3/out -> Wand\n"},
        {R"(["A", "Wand", "Own text='a|b' | Own text=\"c\\\"|\""])", "",
         "Own text='a|b'  type='Vec3f' label='Wand~1'\nOwn text=\"c\\\"|\" type='Vec3f' label='Wand~2'\n"
         "A -> Wand~1/in\nWand~1/out -> Wand~2/in\nWand~2/out -> Wand\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(made(row._routes, row._nodes), row._expected) << row._routes;
}

TEST(RouteConversion, WhatIsWrongIsToldWithItsPlaceInsideTheText)
{
    const struct {
        const char *_routes, *_expected;
    } rows[] = {
        {R"(["A", "Wand", "Axes || OneEuro"])", "s.toml:5:32: a filter is missing"},
        {R"(["A", "Wand", ""])", "s.toml:5:26: a filter is missing"},
        {R"(["A", "Wand", "Axes | "])", "s.toml:5:33: a filter is missing"},
        {R"(["A", "Wand", "Axes | OneEuro cutoff"])", "s.toml:5:41: the settings of 'OneEuro' cannot be read"},
        {R"(["A", "Wand", 'Axes label=x'])", "s.toml:5:31: 'label' of 'Axes'"},
        {R"(["A", "Grip", "Scale | Convert"])", "s.toml:5:34: 'Convert' lacks the setting 'type'"},
        {R"(["A", "B", "Axes"])", "s.toml:5:23: 'Axes' lacks the setting 'type': no end of the route"},
        {R"(["A", "Wnd", "Äxes"])", "s.toml:5:25: 'Äxes' lacks"},
        {R"(["A", "Rumble", "Axes"])", "s.toml:5:28: 'Axes' lacks the setting 'type': no end"},
        {R"(["A/*", "*", "Axes"])", "s.toml:5:24: the route from 'A/*' to '*' stands for several"},
        {"[\"A\", \"Wand\", \"\"\"\n  Axes |\n  | Scale\"\"\"]", "s.toml:7:3: a filter is missing"},
        {R"(["A", "Wand", "Axes a=\"b\" ||"])", "s.toml:5:25: a filter is missing"}, // behind escapes: the text
        {R"(["A", "Wand", "Axes", "Axes"])", "\"conversions\""},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(says(problemOf<SceneError>([&] { parseScene(sceneWith(row._routes), "s.toml"); }), row._expected))
            << row._routes;
    }
}

} // namespace
} // namespace Scenes
