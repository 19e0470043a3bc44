// embed-scene SCENE: runs a scene file in a program of its own, gives it one more node and route, and reads a field
// after each frame.
#include "ostrel/FieldTypes.h"
#include "scene/SceneRunner.h"
#include "sensorManager/SensorHandler.h"
#include "trovio/Exception.h"
#include <cstdio>

namespace {

// False if no value came within 600 frames.
bool runScene(const std::string& path)
{
    Scenes::SceneRunner scene({path}, [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); });

    // Beside what the file names. Both take the texts by reference.
    Ostrel::SensorHandler* const handler = scene.handler("devices");
    if (!handler)
        throw std::invalid_argument("the scene has no handler 'devices'");
    std::string type = "Generator", settings = "label=Second type=Float shape=ramp rate=100";
    handler->addParameter(type, settings);
    std::string from = "Second/value", to = "Ramp";
    handler->addLabel(from, to);

    const auto& wave = scene.field<Ostrel::SFFloat>("wave");
    const auto& ramp = scene.field<Ostrel::SFFloat>("ramp");
    int frames = 0;
    const auto hasBoth = [&] { return wave.value() != 0.0F && ramp.value() != 0.0F; };
    scene.run([&](double) { return !hasBoth() && ++frames < 600; });
    // The file may have been edited meanwhile. Fields of sensors that the plan names would have to be asked for again.
    for (const std::string& line : scene.plan())
        std::printf("changes: %s\n", line.c_str());
    scene.apply();
    std::printf("wave %g, ramp %g\n", double(wave.value()), double(ramp.value()));
    return hasBoth();
} // takes the scene down
} // namespace

int main(int argc, char** argv)
try {
    return argc == 2 && runScene(argv[1]) ? 0 : 1;
} catch (const std::exception& error) { // Scenes::SceneError with all that is wrong with the file, and others
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
} catch (const Trovio::Exception& error) { // from addLabel(): no std::exception
    std::fprintf(stderr, "%s\n", error.getMessage().c_str());
    return 2;
}
