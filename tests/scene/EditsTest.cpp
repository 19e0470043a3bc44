#include "scene/change/Edits.h"
#include "scene/change/ChangesText.h"
#include "scene/change/MergedSettings.h"
#include "scene/file/SceneReader.h"
#include "tests/support/Says.h"

#include <functional>

namespace Scenes {
namespace {

using Settings = std::vector<Trovio::SettingText>;

TEST(MergedSettings, KeepWhatIsNotNamedAndQuoteWhatNeedsIt)
{
    const struct {
        const char* _settings;
        Settings _changed;
        const char* _expected;
    } rows[] = {
        {"", {{"gain", "2"}}, "gain=2"},
        {"a=1  b='two words'\nc=\"3\"", {{"b", "2"}}, "a=1 b=2 c=3"},
        {"a=1", {{"b", ""}, {"c", "x y"}, {"a", "it's\\|"}}, "a='it\\'s\\\\|' b='' c='x y'"},
        {"in='/a Vec3f\n/b Float'", {{"x", "1"}}, "in='/a Vec3f\n/b Float' x=1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(mergedSettings(row._settings, row._changed), row._expected);
}

constexpr char text[] = R"(
[[handler]]
kind = "Trovio"
name = "h"
nodes = [
  ["Generator", "rate=200"],
  ["Scale"],
]
routes = [
  ["Generator/value", "Scale/in"],
  ["Scale/out", "Wave", "Scale gain=2|OneEuro cutoff=1"],
  ["Scale/out", "Dim", "Clamp"],
]
[[handler]]
kind = "Trovio"
name = "g"
[[sensor]]
name = "wave"
type = "SFFloat"
label = "Wave"
[[sensor]]
name = "dim"
type = "SFFloat"
label = "Dim"
[[route]]
from = "Context/Scale/out"
to = "Context2/Wave"
)";

/// The scene, edited again and again.
struct Edited {
    const SceneFiles _loaded{std::make_shared<const SceneFile>(parseScene(text, "s.toml"))};
    SceneFiles _files = _loaded;

    void set(const std::string& label, const Settings& settings) { _files = withSettings(_files, label, settings); }
    void add(const std::string& from, const std::string& to, const std::string& conversion = "")
    {
        _files = withRoute(_files, from, to, conversion);
    }
    void remove(const std::string& from, const std::string& to) { _files = withoutRoute(_files, from, to); }
    std::string changes() const { return changesText(*_loaded[0], *_files[0], {}); }
};

TEST(Edits, ShowsWhatToPasteWhere)
{
    const struct {
        std::function<void(Edited&)> _edit;
        const char* _expected;
    } rows[] = {
        {[](Edited&) {}, ""},
        {[](Edited& scene) {
             scene.set("Scale", {{"gain", "3"}});
         },
         "# s.toml:7:4: in place of this node of handler 'h'\n[\"Scale\", \"gain=3\"],\n"},
        {[](Edited& scene) {
             scene.set("Context/Wave~2", {{"cutoff", "2 | \"\n"}});
             scene.set("Wave~1", {{"gain", "4"}});
         },
         "# s.toml:11:4: in place of this route of handler 'h'\n"
         "[\"Scale/out\", \"Wave\", \"Scale gain=4 | OneEuro cutoff='2 | \\\"\\n'\"],\n"},
        {[](Edited& scene) {
             scene.remove("Scale/out", "Context/Wave");
             scene.add("Context/Scale/out", "Context/Wave", "Scale");
             scene.add("Context/Generator/value", "Context2/Dim");
             scene.set("Wave~1", {{"gain", "5"}});
         },
         "# s.toml:11:4: without this route of handler 'h'\n"
         "# [\"Scale/out\", \"Wave\", \"Scale gain=2|OneEuro cutoff=1\"],\n\n"
         "# s.toml:4:8: one more, behind the other routes of handler 'h'\n[\"Scale/out\", \"Wave\", \"Scale "
         "gain=5\"],\n\n"
         "# s.toml: one more table, behind all others\n"
         "[[route]]\nfrom = \"Context/Generator/value\"\nto = \"Context2/Dim\"\n"},
        {[](Edited& scene) { scene.remove("Context/Scale/out", "Context2/Wave"); },
         "# s.toml:26:8: without this route of the root\n"
         "# [[route]]\n# from = \"Context/Scale/out\"\n# to = \"Context2/Wave\"\n"},
        {[](Edited& scene) {
             scene.set("Generator", {{"rate", "5"}});
             scene.set("Generator", {{"rate", "200"}});
             scene.add("Context/Generator/value", "Context/Wave");
             scene.remove("Generator/value", "Wave");
         },
         ""},
    };
    for (const auto& row : rows) {
        Edited scene;
        row._edit(scene);
        EXPECT_EQ(scene.changes(), row._expected);
    }
    EXPECT_EQ(changesText(*Edited()._loaded[0], *Edited()._loaded[0], {{"dim", "[1, 2]"}}),
              "# s.toml:22:8: the value of sensor 'dim'\nvalue = [1, 2]\n");
}

TEST(Edits, RefusesWithTheCure)
{
    const struct {
        std::function<void(Edited&)> _edit;
        const char* _expected;
    } rows[] = {
        {[](Edited& scene) {
             scene.set("Scalle", {{"gain", "3"}});
         },
         "'Scalle'; did you mean 'Scale'?"},
        {[](Edited& scene) {
             scene.set("Scale", {{"label", "x"}});
         },
         "'label' of node 'Context/Scale' stays"},
        {[](Edited& scene) {
             scene.set("Scale", {{"a b", "x"}});
         },
         "'a b' is no name of a setting"},
        {[](Edited& scene) { scene.set("Scale", {}); }, "say name=value"},
        {[](Edited& scene) { scene.add("Context/Generator/value", "Context/Scale/in"); }, "is there already"},
        {[](Edited& scene) { scene.add("Context/Generator/value", "Context2/Dim", "Scale"); },
         "no conversion can stand"},
        {[](Edited& scene) { scene.add("Context/Generator/value", "Context/Dim", "Scale |"); }, "a filter is missing"},
        {[](Edited& scene) { scene.add("Context/*", "Context/*/*"); }, "s.toml"},
        {[](Edited& scene) { scene.remove("Generator/value", "Wave"); },
         "one from 'Context/Generator/value' to 'Context/Scale/in'"},
        {[](Edited& scene) { scene.remove("Scale/out", "Wave"); }, "several routes lead"},
    };
    for (const auto& row : rows) {
        Edited scene;
        EXPECT_TRUE(says(problemOf<SceneError>([&] { row._edit(scene); }), row._expected)) << row._expected;
        EXPECT_EQ(scene.changes(), "");
    }
}

} // namespace
} // namespace Scenes
