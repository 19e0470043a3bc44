#pragma once

#include "ostrel/DirectSensor.h"
#include "ostrel/Observer.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Trovio {
class BasicInSlot;
class Slot;
} // namespace Trovio

namespace Scenes {

class SensorWatch;

/// Hears of every change of every watched sensor, on the scene thread.
class ChangeListener {
public:
    /// `time` is the frame's, in wall-clock seconds.
    virtual void changed(const SensorWatch& watch, double time) = 0;

protected:
    ~ChangeListener() = default;
};

/// Counts the changes of one sensor's field and tells a listener, which may be null.
/// Ownership: refers to the sensor, which must have a field and live as long; is told by nobody once it is destroyed.
/// Threads:   the scene thread.
class SensorWatch final : public Ostrel::Observer {
public:
    /// `scene` names the sensor's scene where several run, else it is empty.
    SensorWatch(Ostrel::DirectSensor& sensor, std::string scene);

    void setListener(ChangeListener* listener) { _listener = listener; }

    const std::string& scene() const { return _scene; }
    const Ostrel::DirectSensor& sensor() const { return _sensor; }
    Ostrel::Field& field() const { return *_sensor.getField(); }

    /// The name, with the scene before it where several run.
    std::string title() const;

    /// The slots that serve the sensor, one for each handler that has one. They must live until they are removed, or as
    /// long as the watch.
    const std::vector<Trovio::Slot*>& slots() const { return _slots; }
    void addSlot(Trovio::Slot& slot);
    void removeSlot(const Trovio::Slot& slot);

    std::uint64_t changes() const { return _changes; }

    /// The time stamp that the source gave the record behind the last change, in its wall-clock seconds; nothing where
    /// no record stands behind it, as of a value that came along a link.
    std::optional<double> stamp() const { return _stamp; }

    /// The wall clock was set by so many seconds: what is measured from before goes on as if it had not been.
    void clockStepped(double seconds);

    /// Seconds from the time stamp that the source gave the last value to `now`, or from the last change where there is
    /// no such stamp or one in the future; never less than 0 but before the first change.
    double age(double now) const;

    /// Changes per second from the first to the last; 0 before there are two.
    double rate() const;

    void notify(const Ostrel::TimeStamp& time, Ostrel::BaseObject*, Ostrel::BaseObject*, Ostrel::BaseObject*) override;

private:
    struct Source {
        const Trovio::BasicInSlot* _slot;
        std::uint64_t _taken; // records, up to the last change
    };

    std::optional<double> takenStamp();

    Ostrel::DirectSensor& _sensor;
    const std::string _scene;
    std::vector<Trovio::Slot*> _slots;
    std::vector<Source> _sources; // those of _slots that values come in by
    ChangeListener* _listener = nullptr;
    std::uint64_t _changes = 0;
    double _firstChange = 0, _lastChange = 0; // on the wall clock as it is set now
    std::optional<double> _stamp;
    double _stepsSinceChange = 0;
};
} // namespace Scenes
