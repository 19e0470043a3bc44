// embed-monitor SCENE [SECONDS]: runs a scene file, and lets others look in meanwhile.
#include "monitor/Server.h"
#include "scene/SceneRunner.h"
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
try {
    const double seconds = argc > 2 ? std::atof(argv[2]) : 0.5;
    Scenes::SceneRunner scene({argv[1]});
    Monitor::Server server({.listen = "127.0.0.1:8765"}); // goes before the scene, which ends the root
    for (const std::string& address : server.addresses())
        std::printf("%s\n", address.c_str());
    std::printf("%s\n", server.socketPath().c_str());
    double end = 0;
    scene.run([&](double now) { return now < (end == 0 ? end = now + seconds : end); });
    return server.problems().empty() ? 0 : 1;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
}
