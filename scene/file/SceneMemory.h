#pragma once

#include "scene/file/SceneFile.h"

#include <cstdint>
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
    const SensorEntry* _sensor = nullptr;
    std::uint64_t _record = 0; // bytes of one value with its time stamp
    std::uint64_t _slots = 0;  // bytes of all its slots with their buffers
};

/// What the slots and buffers of a scene take, before a value comes. What values hold elsewhere, such as long texts, is
/// not in it.
/// Ownership: refers to the scene.
class SceneMemory {
public:
    explicit SceneMemory(const SceneFile& scene);

    std::uint64_t bytes() const { return _bytes; }
    /// The sensor that takes most; null without a sensor.
    const SensorEntry* largest() const { return _largest._sensor; }
    /// How much of it the largest takes, and for what.
    std::string largestText() const;

private:
    std::uint64_t _handlers = 0; // that serve each sensor
    std::uint64_t _bytes = 0;
    SensorMemory _largest;
};

/// A buffer whose values may hold much memory, and what to say of it.
struct PinnedNote {
    const SensorEntry* _sensor;
    std::string _text;
};

/// The buffers whose values could hold much memory, also after they were taken: a buffer lets go of a value only when
/// another takes its place.
std::vector<PinnedNote> pinnedBy(const SceneFile& scene);

/// Memory ran out; what() says for what.
class OutOfMemory : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

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
        throw OutOfMemory("memory ran out: " + asked);
    }
}
} // namespace Scenes
