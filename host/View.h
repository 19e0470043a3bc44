#pragma once

#include "host/CommandLine.h"
#include "host/SensorWatch.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <vector>

namespace Host {

class RunLog;

/// Shows the values of a run as they change. Scene thread only.
class View : public ChangeListener {
public:
    virtual ~View() = default;
    void changed(const SensorWatch&, double) override {}

    /// A frame is over; `now` is its wall-clock time in seconds.
    virtual void frame(double now) { (void)now; }

    /// The wall clock was set by so many seconds since the last frame.
    virtual void clockStepped(double seconds) { (void)seconds; }
};

/// One line per change: seconds since `start`, name, type, value.
std::unique_ptr<View> makeLinesView(std::ostream& out, double start);

/// One JSON object per change and line.
std::unique_ptr<View> makeJsonView(std::ostream& out);

/// A table of all sensors. On a terminal it is redrawn in place four times a second, and shows above itself what `log`
/// holds back meanwhile; null where messages go elsewhere. Not on a terminal it is written again once a second. While
/// `isTaken` says that the last one has not been read yet, none is drawn: the next one that is tells the same and more.
std::unique_ptr<View> makeTableView(std::ostream& out, bool onTerminal, RunLog* log, std::vector<SensorWatch*> watches,
                                    std::function<bool()> isTaken);
} // namespace Host
