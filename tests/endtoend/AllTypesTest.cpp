#include "tests/endtoend/Programs.h"

#include <csignal>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <toml++/toml.h>

using Json = nlohmann::json;

namespace {

std::string madeScene(const std::vector<std::string>& arguments)
{
    HostProcess maker(PROJECT_FOLDER "/examples/make-all-types", arguments);
    EXPECT_EQ(maker.wait(), 0) << maker.err();
    return maker.out();
}

/// What a scene gives its output sensors, by type.
Json valuesInScene(const std::string& scene)
{
    std::ostringstream text;
    text << toml::json_formatter(toml::parse(scene));
    Json values = Json::object();
    const Json whole = Json::parse(text.str());
    for (const Json& sensor : whole["sensor"])
        if (sensor.contains("value"))
            values[sensor["type"].get<std::string>()] = sensor["value"];
    return values;
}

/// What the sensors showed last, by type.
Json valuesShown(const std::string& lines)
{
    std::istringstream all(lines);
    Json values = Json::object();
    for (std::string line; std::getline(all, line);) {
        const Json shown = Json::parse(line);
        if (shown.contains("value")) // the last line has the counts of the run
            values[shown["type"].get<std::string>()] = shown["value"];
    }
    return values;
}

void expectEqual(const Json& shown, const Json& sent)
{
    EXPECT_EQ(sent.size(), 38U);
    EXPECT_TRUE(shown == sent) << Json::diff(sent, shown).dump();
}

TEST(AllTypes, ComeBackEqualInOneScene)
{
    const std::string scene = PROJECT_FOLDER "/examples/all-types.toml";
    HostProcess running(host, {"run", scene, "--frames", "2", "--format", "json"});
    ASSERT_EQ(running.wait(), 0) << running.err();
    expectEqual(valuesShown(running.out()), valuesInScene(projectFile("examples/all-types.toml")));
}

TEST(AllTypes, ArriveEqualInAnotherProcess)
{
    const SceneOnDisk receiving(madeScene({"receive", "0"}));
    HostProcess receiver(host, {"run", receiving.path(), "--format", "json"});
    const SceneOnDisk sending(madeScene({"send", listeningPort(receiver)}));
    HostProcess sender(host, {"run", sending.path()});
    const Json sent = valuesInScene(projectFile("examples/all-types-send.toml"));
    for (const auto& [type, value] : sent.items())
        ASSERT_TRUE(receiver.waitFor("\"got-" + type + "\"")) << receiver.err();
    for (HostProcess* process : {&sender, &receiver}) {
        process->signal(SIGTERM);
        EXPECT_EQ(process->wait(), 0) << process->err();
    }
    expectEqual(valuesShown(receiver.out()), sent);
}

TEST(AllTypes, ExamplesAreWhatTheirMakerWrites)
{
    for (const auto& [what, file] : {std::pair{"local", "examples/all-types.toml"},
                                     {"send", "examples/all-types-send.toml"},
                                     {"receive", "examples/all-types-receive.toml"}})
        EXPECT_EQ(madeScene({what}), projectFile(file));
}
} // namespace
