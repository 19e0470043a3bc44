#include "scene/SceneRunner.h"
#include "explain/Graph.h"
#include "ostrel/DirectSensor.h"
#include "ostrel/FieldTypes.h"
#include "scene/SceneCheck.h"
#include "sensorManager/SensorHandler.h"
#include "tests/support/SceneOnDisk.h"
#include "trovio/Exception.h"
#include "trovio/Root.h"

#include <gtest/gtest.h>

using namespace Scenes;

namespace {

const std::string good = "[host]\nrate = 200\n[[handler]]\nkind = \"Trovio\"\nname = \"devices\"\n"
                         "nodes = [[\"Generator\", \"type=Float rate=200\"], [\"Nothing\"]]\n"
                         "routes = [[\"Generator/value\", \"Wave\"]]\n"
                         "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n"
                         "[[sensor]]\nname = \"more\"\ntype = \"SFFloat\"\nlabel = \"More\"\n";

/// What() of the exception that the action throws.
template <class Exception, class Action>
std::string whatOf(Action&& action)
{
    try {
        action();
    } catch (const Exception& error) {
        return error.what();
    }
    return "nothing was thrown";
}

// Twice in one process, for the end of one is the beginning of another.
TEST(SceneRunner, RunsReadsFieldsAndTakesNodesAndRoutes)
{
    const SceneOnDisk file(good);
    for (int time = 0; time < 2; ++time) {
        std::vector<std::string> said;
        SceneRunner scene({file.path()}, [&said](const std::string& line) { said.push_back(line); });
        ASSERT_EQ(scene.missing().size(), 1U);
        EXPECT_NE(scene.missing()[0].find(":6:"), std::string::npos) << scene.missing()[0];
        EXPECT_EQ(said.size(), 1U);
        EXPECT_EQ(scene.rate(), 200);
        std::string type = "Generator", settings = "label=Second type=Float rate=200", from = "Second/value",
                    to = "More";
        scene.handler("devices")->addParameter(type, settings);
        scene.handler("devices")->addLabel(from, to);
        const auto& wave = scene.field<Ostrel::SFFloat>("wave");
        const auto& more = scene.field<Ostrel::SFFloat>("more");
        int frames = 0;
        const auto isComplete = [&] { return wave.value() != 0 && more.value() != 0; };
        const auto run = scene.run([&](double) { return ++frames < 2000 && !isComplete(); });
        EXPECT_EQ(run, unsigned(frames));
        EXPECT_TRUE(isComplete());
        EXPECT_NE(Explain::graphText(Trovio::Root::get().inspect()).find("'Second/value' -> 'More': connects 1"),
                  std::string::npos);
    }
}

TEST(SceneRunner, ThrowsWhatItsHeaderSays)
{
    const SceneOnDisk bad("[[sensor]]\nname = \"a\"\nkind = 1\n"), odd(good);
    const std::string refusal = whatOf<SceneError>([&] { SceneRunner({bad.path(), "no such file"}); });
    EXPECT_NE(refusal.find(bad.path() + ":3:1: unknown key 'kind'"), std::string::npos) << refusal;
    EXPECT_NE(refusal.find("\nno such file: cannot be opened"), std::string::npos) << refusal;

    SceneRunner scene({odd.path()});
    EXPECT_NE(whatOf<std::logic_error>([&] { SceneRunner({odd.path()}); }), "nothing was thrown");
    EXPECT_NE(whatOf<std::logic_error>([&] { checkScenes({odd.path()}); }), "nothing was thrown");
    EXPECT_EQ(whatOf<std::invalid_argument>([&] { scene.field<Ostrel::SFBool>("wave"); }),
              "the field of sensor 'wave' is of class SFFloat");
    EXPECT_EQ(whatOf<std::invalid_argument>([&] { scene.field<Ostrel::SFBool>("wafe"); }),
              "no sensor is called 'wafe'; nearest: 'wave'");
    EXPECT_EQ(scene.sensor("wafe"), nullptr);
    EXPECT_EQ(scene.handler("other"), nullptr);
    std::string from, to;
    EXPECT_THROW(scene.handler("devices")->addLabel(from, to), Trovio::Exception);
}

TEST(SceneCheck, TellsWhatIsWrongAndWhatIsOdd)
{
    const SceneOnDisk file(good);
    const std::vector<SceneFinding> findings = checkScenes({file.path()});
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_TRUE(findings[0]._isError);
    EXPECT_EQ(findings[0]._line, 6U);
    EXPECT_FALSE(findings[1]._isError);
    EXPECT_NE(findings[1]._text.find("'more'"), std::string::npos) << findings[1]._text;
}
} // namespace
