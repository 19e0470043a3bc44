// The text of a scene file, read from a file, and made into sensors that run a frame. Handlers and nodes, which would
// open devices, are left out.
#include "fuzz/Fuzz.h"
#include "scene/change/Difference.h"
#include "scene/file/SceneReader.h"
#include "scene/run/LoadedScene.h"
#include "scene/toml/Problems.h"
#include "scene/toml/SceneText.h"
#include "trovio/routing/Pattern.h"
#include <algorithm>
#include <cmath>
#include <sys/mman.h>
#include <unistd.h>

namespace Fuzz {

namespace {

/// A file in memory, which lives as long as this.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view content) : _descriptor(::memfd_create("scene", MFD_CLOEXEC))
    {
        const auto written = ::write(_descriptor, content.data(), content.size());
        require(written == static_cast<ssize_t>(content.size()), "the file in memory holds the input");
    }
    ~MemoryFile() { ::close(_descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(_descriptor); }

private:
    const int _descriptor;
};

void checkRefusal(std::string_view text, const std::string& path)
{
    require(isPrintable(text), "problems of a scene can be shown as they are");
    require(std::count(text.begin(), text.end(), '\n') <= 20, "problems are a page at most");
    while (!text.empty())
        require(takeLine(text).starts_with(path), "every line of problems names the file");
}

void checkScene(Scenes::SceneFile scene)
{
    require(scene._host._rate._value > 0 && scene._host._rate._value <= Scenes::maxRate, "the rate is in its range");
    for (const Scenes::SensorEntry& sensor : scene._sensors) {
        require(sensor._label._value.size() <= Trovio::MaxLabelLength, "labels end at their limit");
        require(sensor._buffer._value <= Scenes::maxBuffer, "buffers end at their limit");
        require(sensor._name._position._line > 0, "what was read knows its line");
    }
    const std::size_t count = scene._sensors.size();
    Scenes::LoadedScene loaded(std::make_shared<const Scenes::SceneFile>(std::move(scene)), "", [] { return false; });
    loaded.addSensors();
    require(loaded.watches().size() == count, "each sensor of the text is one of the scene");
    loaded.frame(1.0);
    loaded.unregisterSensors();
}

Scenes::SceneFiles shared(const std::vector<Scenes::SceneFile>& scenes)
{
    Scenes::SceneFiles files;
    for (const Scenes::SceneFile& scene : scenes)
        files.push_back(std::make_shared<const Scenes::SceneFile>(scene));
    return files;
}

} // namespace

void runOnce(std::string_view input)
{
    const MemoryFile file(input);
    try {
        auto scenes = Scenes::readScenes({file.path()});
        require(linesOf(differences(shared(scenes), shared(Scenes::readScenes({file.path()})))).empty(),
                "a scene that is read twice has not changed");
        checkScene(std::move(scenes.front()));
    } catch (const Scenes::SceneError& refusal) {
        checkRefusal(refusal.what(), file.path());
    }
}

} // namespace Fuzz
