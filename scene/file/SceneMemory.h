#pragma once

#include "scene/file/SceneFile.h"
#include "scene/toml/Problems.h"

#include <cstdint>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace Scenes {

/// "1.5 GiB", "340 bytes"
std::string bytesText(std::uint64_t bytes);

/// The bytes that a text such as "2 GiB" or "512 MiB" stands for; 0 for any other text, and for more than 1024 GiB.
std::uint64_t bytesIn(std::string_view text);

/// What one sensor's slots take in all handlers that serve it.
struct SensorMemory {
    const SceneFile* _scene = nullptr;
    const SensorEntry* _sensor = nullptr;
    std::uint64_t _record = 0;   // bytes of one value with its time stamp
    std::uint64_t _handlers = 0; // that serve it
    std::uint64_t _slots = 0;    // bytes of all its slots with their buffers
};

/// What the slots and buffers of scenes that run together take, before a value comes. What values hold elsewhere, such
/// as long texts, is not in it.
/// Ownership: refers to the scenes.
class SceneMemory {
public:
    explicit SceneMemory(std::span<const SceneFile> scenes);

    std::uint64_t bytes() const { return _bytes; }
    /// Which sensors take most, and how much for what.
    std::string largestText() const;

    /// Adds to the problems of the scene whose sensor takes most that this is more than `maxBytes`, if it is.
    void refuseAbove(std::uint64_t maxBytes, Problems& problems) const;
    /// That scene; null without a sensor.
    const SceneFile* largestScene() const { return _largest.empty() ? nullptr : _largest.front()._scene; }

private:
    const bool _several; // scenes
    std::uint64_t _bytes = 0;
    std::vector<SensorMemory> _largest; // a few, the first takes most
};

/// Scenes of one run share the largest amount of memory that one of them allows. Throws SceneError where their sensors
/// together need more.
void checkSharedMemory(const std::vector<SceneFile>& files);

/// What to say of buffers whose values may hold much memory, also after they were taken: a buffer lets go of a value
/// only when another takes its place.
struct PinnedNote {
    Position _position;
    std::string _text;
};

/// Nothing where all buffers of the scene together hold little.
std::optional<PinnedNote> pinnedBy(const SceneFile& scene);

/// Memory ran out; what() says for what.
class OutOfMemory : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What helps where there was too little.
constexpr const char* memoryCure =
    "; give the program more (ulimit -v, MemoryMax of a service), or make the scene smaller";

/// Says what the scenes ask for.
std::string askedFor(const std::vector<SceneFile>& files);

/// Runs `action`, which makes something of the scenes. Where memory runs out it throws OutOfMemory with what they ask
/// for.
template <class Action>
auto withMemoryFor(const std::vector<SceneFile>& files, Action&& action)
{
    const std::string asked = askedFor(files); // the action may take the files
    try {
        return action();
    } catch (const std::bad_alloc&) {
        throw OutOfMemory("memory ran out: " + asked + memoryCure);
    }
}
} // namespace Scenes
