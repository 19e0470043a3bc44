#pragma once

#include "host/show/KeyPresses.h"
#include "host/show/Keyboard.h"
#include "host/show/SensorFilter.h"
#include "scene/run/Session.h"

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Host {

class RunLog;

/// Shows the values of a run as they change. Scene thread only.
class View : public Scenes::ChangeListener {
public:
    virtual ~View() = default;
    void changed(const Scenes::SensorWatch&, double) override {}

    /// A frame is over; `now` is its wall-clock time in seconds.
    virtual void frame(double now) { (void)now; }

    /// The wall clock was set by so many seconds since the last frame.
    virtual void clockStepped(double seconds) { (void)seconds; }

    /// The session has other sensors now, or in another order; the ones before are gone.
    virtual void sensorsChanged(const Scenes::Session& session) { (void)session; }

    /// What is shown is out of date, whatever the time.
    virtual void refresh() {}
    /// A key that somebody else read, for a view without a keyboard of its own.
    virtual void press(const KeyPress&) {}
    /// Whether letters are typed just now.
    virtual bool isTyping() const { return false; }
    /// Somebody else wrote to the terminal.
    virtual void terminalIsBack() {}
};

/// One line per change: seconds since `start`, name, type, value.
std::unique_ptr<View> makeLinesView(std::ostream& out, double start);

/// One JSON object per change and line.
std::unique_ptr<View> makeJsonView(std::ostream& out);

/// How a table is shown.
struct TableScreen {
    bool _inPlace = false;                  // else it is written again and again
    RunLog* _log = nullptr;                 // what it holds back is shown above the table; null where it goes elsewhere
    std::unique_ptr<Keyboard> _keyboard;    // may be null
    std::function<bool()> _isTaken;         // whether what was drawn last has been read; empty where it always is
    std::function<std::string()> _status{}; // a line below the table; may be empty
};

/// The sensors that a table shows, numbered from 0. Asked on the thread that draws.
class TableSensors {
public:
    struct Names {
        std::string _title, _label, _type;
        bool operator==(const Names&) const = default;
    };

    virtual ~TableSensors() = default;
    /// Of all of them.
    virtual std::vector<Names> names() const = 0;
    /// The value for people, in about `limit` bytes at most.
    virtual std::string value(std::size_t sensor, std::size_t limit) const = 0;
    /// Values that it had so far.
    virtual std::uint64_t changes(std::size_t sensor) const = 0;
    /// Seconds from its last value to `now`, in wall-clock seconds; negative where it had none.
    virtual double age(std::size_t sensor, double now) const = 0;
};

/// Those of a run in this process. The watches must live as long.
std::unique_ptr<TableSensors> watchedSensors(std::vector<Scenes::SensorWatch*> watches);

/// A table of the sensors that pass a filter. In place it is drawn anew four times a second and after each key; it
/// takes the size of the terminal at standard output, and waits while the program is in the background. Otherwise it is
/// written once a second, whole. None is drawn while the last one waits to be read, as the next one shows the newest
/// values anyway.
std::unique_ptr<View> makeTableView(std::ostream& out, TableScreen screen, std::unique_ptr<TableSensors> sensors,
                                    SensorFilter filter = SensorFilter());
} // namespace Host
