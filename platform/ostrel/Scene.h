#pragma once

#include "ostrel/Context.h"
#include "ostrel/DirectSensor.h"
#include "ostrel/Node.h"
#include "ostrel/TimeStamp.h"
#include <array>
#include <cstddef>
#include <cstdint>
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

    std::size_t size() const { return _places.size(); }
    /// In scene order.
    std::vector<DirectSensor*> sensors() const;

    /// Services every sensor once: first all inputs, then all outputs, each in scene order, so that a value that came
    /// in goes out in the same frame. Sensors may be added and removed meanwhile. `now` is wall-clock seconds.
    /// One that there is no memory for waits for the next frame; the log is told once. Other exceptions end the frame.
    void frame(const TimeStamp& now);

    /// The sensors whose values changed since the last call, in scene order. Quick when there are none.
    std::vector<DirectSensor*> takeChanged();

private:
    class Walk;
    enum Direction : std::uint8_t { In, Out, None };
    /// Where a sensor stands. It knows the direction, so that a walk reads nothing of the sensors that it passes over.
    struct Seat {
        std::unique_ptr<DirectSensor> _sensor; // null where it was taken away
        Direction _direction = None;
    };

    void ask(Seat& seat);
    void askAll();
    /// Those that stand at `next` and behind it; `next` says how far it came, also when it throws.
    void service(bool outputs, std::size_t& next, const TimeStamp& now);
    /// What service() left when it threw for want of memory.
    void serviceLeft(bool outputs, std::size_t next, const TimeStamp& now);
    void tellOfMemory() noexcept;
    std::unique_ptr<DirectSensor> take(std::size_t place);
    void closeGaps();

    std::unique_ptr<Context> _context;
    Node _root; // above all sensors, so that it knows whether any changed
    std::vector<Seat> _seats;
    std::array<std::size_t, 3> _counts{};                         // of seats, by direction
    std::uint64_t _turns = 0;                                     // of all sensors, when those here were asked
    std::unordered_map<const DirectSensor*, std::size_t> _places; // in _seats
    int _walks = 0;
    bool _toldOfMemory = false;
};

} // namespace Ostrel
