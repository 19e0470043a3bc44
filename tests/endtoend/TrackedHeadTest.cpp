#include "tests/endtoend/Programs.h"

#include <csignal>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

using Json = nlohmann::json;

namespace {

/// The newest value of each sensor that was shown.
std::map<std::string, Json> newestShown(const std::string& lines)
{
    std::istringstream all(lines.substr(0, lines.rfind('\n') + 1));
    std::map<std::string, Json> values;
    for (std::string line; std::getline(all, line);)
        if (const Json shown = Json::parse(line); shown.contains("value"))
            values[shown["sensor"]] = shown["value"];
    return values;
}

double farthest(const Json& shown, const Json& meant)
{
    double farthest = shown.size() == meant.size() ? 0 : 1;
    for (std::size_t i = 0; i < std::min(shown.size(), meant.size()); ++i)
        farthest = std::max(farthest, std::abs(shown[i].get<double>() - meant[i].get<double>()));
    return farthest;
}

/// Whether the sensors of a device have what its app meant. A quaternion and its negative are one rotation.
bool isAsMeant(std::map<std::string, Json>& shown, const Json& meant)
{
    const std::string name = meant["sensor"];
    Json turn = meant["turn"], opposite = turn;
    for (Json& part : opposite)
        part = -part.get<double>();
    const Json& seen = shown[name + " turn"];
    const bool isPulled = !meant["trigger"].is_null() && meant["trigger"].get<double>() > 0.6;
    const std::string side = name.substr(0, name.find(' '));
    return farthest(shown[name], meant["place"]) < 1e-5 &&
           std::min(farthest(seen, turn), farthest(seen, opposite)) < 1e-5 &&
           (meant["trigger"].is_null() || shown[side + " grip"] == isPulled);
}

TEST(TrackedHead, ArrivesAsItsAppMeantIt)
{
    std::string text = projectFile("examples/tracked-head.toml");
    const std::string port = "127.0.0.1:9000";
    text.replace(text.find(port), port.size(), "127.0.0.1:0");
    const SceneOnDisk scene(text);
    HostProcess running(host, {"run", scene.path(), "--format", "json"});
    HostProcess app(PROJECT_FOLDER "/examples/send-tracked-head", {listeningPort(running), "0.4"});
    ASSERT_EQ(app.wait(), 0) << app.err();

    std::istringstream meant(app.out());
    int devices = 0;
    for (std::string line; std::getline(meant, line); ++devices)
        for (auto shown = newestShown(running.out()); !isAsMeant(shown, Json::parse(line));
             shown = newestShown(running.out()))
            running.waitFor("what is never written", 20); // reads on; a hang ends with the test's time
    EXPECT_EQ(devices, 3);
    running.signal(SIGTERM);
    EXPECT_EQ(running.wait(), 0) << running.err();
}
} // namespace
