#pragma once

#include "ostrel/Context.h"
#include "ostrel/DirectSensor.h"
#include "ostrel/Node.h"
#include "ostrel/TimeStamp.h"
#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace Ostrel {

/// A context with its sensors, in the order in which they were added.
/// Ownership: owns both; a sensor leaves the context before either ends. Threads: the scene thread only.
class Scene {
public:
    Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene();

    Context& context() { return *_context; }

    /// Takes the sensor, never null, and gives it the context, which registers it. When that throws, the sensor is gone
    /// again and the exception passes on.
    DirectSensor& add(std::unique_ptr<DirectSensor> sensor);
    /// Unregisters the sensor and hands it back, without context. Null when it is not of this scene.
    std::unique_ptr<DirectSensor> remove(DirectSensor& sensor);
    /// Unregisters and destroys all sensors, the first one first; the context stays.
    void clear();

    std::size_t size() const { return _sensors.size(); }
    /// In scene order.
    std::vector<DirectSensor*> sensors() const;

    /// Services every sensor once: first all inputs, then all outputs, each in scene order, so that a value that came
    /// in goes out in the same frame. Sensors may be added and removed meanwhile. `now` is wall-clock seconds.
    /// One that there is no memory for waits for the next frame; the log is told once. Other exceptions end the frame.
    void frame(const TimeStamp& now);

    /// The sensors whose values changed since the last call, in scene order. Quick when there are none.
    std::vector<DirectSensor*> takeChanged();

private:
    using Sensors = std::map<std::uint64_t, std::unique_ptr<DirectSensor>>;
    class Walk;
    /// True if there was a sensor of the other direction.
    bool service(bool outputs, Sensors::iterator first, const TimeStamp& now);
    /// What a walk that threw for want of memory left.
    void serviceLeft(bool outputs, const TimeStamp& now);
    void tellOfMemory() noexcept;
    std::unique_ptr<DirectSensor> take(Sensors::iterator place);

    std::unique_ptr<Context> _context;
    Node _root; // above all sensors, so that it knows whether any changed
    std::uint64_t _number = 0;
    Sensors _sensors; // by the number of the addition
    std::unordered_map<const DirectSensor*, std::uint64_t> _numbers;
    Walk* _walk = nullptr;   // the innermost one that runs
    Sensors::iterator _left; // where the last walk ended, also when it threw
    bool _toldOfMemory = false;
};

} // namespace Ostrel
