#include "explain/text/Escape.h"
#include "host/show/Json.h"
#include "host/show/View.h"

#include <cstdio>
#include <ostream>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

constexpr std::size_t maxValue = 400;

class LinesView final : public View {
public:
    LinesView(std::ostream& out, double start) : _out(out), _start(start) {}

    void changed(const SensorWatch& watch, double time) override
    {
        char seconds[32];
        std::snprintf(seconds, sizeof seconds, "%10.3f", time - _start);
        _out << seconds + (" " + escaped(watch.title())) + " " + watch.field().getTypeName() + " " +
                    valueText(watch.field(), Digits::All, maxValue) + "\n";
    }

    void clockStepped(double seconds) override { _start += seconds; }

private:
    std::ostream& _out;
    double _start;
};

class JsonView final : public View {
public:
    explicit JsonView(std::ostream& out) : _out(out) {}

    void changed(const SensorWatch& watch, double time) override
    {
        const Ostrel::DirectSensor& sensor = watch.sensor();
        _out << jsonLine({time, watch.stamp()},
                         {watch.scene(), sensor.getName(), sensor.getLabel(), watch.field().getTypeName()},
                         watch.field());
    }

private:
    std::ostream& _out;
};
} // namespace

std::unique_ptr<View> makeLinesView(std::ostream& out, double start)
{
    return std::make_unique<LinesView>(out, start);
}

std::unique_ptr<View> makeJsonView(std::ostream& out)
{
    return std::make_unique<JsonView>(out);
}
} // namespace Host
