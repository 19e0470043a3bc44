#include "scene/SceneRunner.h"
#include "explain/Graph.h"
#include "ostrel/DirectSensor.h"
#include "ostrel/FieldTypes.h"
#include "scene/SceneCheck.h"
#include "sensorManager/SensorHandler.h"
#include "tests/support/Says.h"
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

// Twice in one process, for the end of one is the beginning of another.
TEST(SceneRunner, RunsReadsFieldsAndTakesNodesAndRoutes)
{
    const SceneOnDisk file(good);
    for (int time = 0; time < 2; ++time) {
        std::vector<std::string> said;
        SceneRunner scene({file.path()}, [&said](const std::string& line) { said.push_back(line); });
        ASSERT_EQ(scene.missing().size(), 1U);
        EXPECT_TRUE(says(scene.missing()[0], ":6:"));
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
        EXPECT_TRUE(says(Explain::graphText(Trovio::Root::get().inspect()), "'Second/value' -> 'More': connects 1"));
    }
}

TEST(SceneRunner, ThrowsWhatItsHeaderSays)
{
    const SceneOnDisk bad("[[sensor]]\nname = \"a\"\nkind = 1\n"), odd(good);
    const std::string refusal = problemOf<SceneError>([&] { SceneRunner({bad.path(), "no such file"}); });
    EXPECT_TRUE(says(refusal, bad.path() + ":3:1: unknown key 'kind'"));
    EXPECT_TRUE(says(refusal, "\nno such file: cannot be opened"));

    SceneRunner scene({odd.path()});
    EXPECT_THROW(SceneRunner({odd.path()}), std::logic_error);
    EXPECT_THROW(checkScenes({odd.path()}), std::logic_error);
    EXPECT_EQ(problemOf<std::invalid_argument>([&] { scene.field<Ostrel::SFBool>("wave"); }),
              "the field of sensor 'wave' is of class SFFloat");
    EXPECT_EQ(problemOf<std::invalid_argument>([&] { scene.field<Ostrel::SFBool>("wafe"); }),
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
    EXPECT_TRUE(says(findings[1]._text, "'more'"));
}
} // namespace
