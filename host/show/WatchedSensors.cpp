#include "host/show/Json.h"
#include "host/show/View.h"

namespace Host {

using namespace Scenes;

namespace {

class WatchedSensors final : public TableSensors {
public:
    explicit WatchedSensors(std::vector<SensorWatch*> watches) : _watches(std::move(watches)) {}

    std::vector<Names> names() const override
    {
        std::vector<Names> names;
        for (const SensorWatch* watch : _watches)
            names.push_back({watch->title(), watch->sensor().getLabel(), watch->field().getTypeName()});
        return names;
    }

    std::string value(std::size_t sensor, std::size_t limit) const override
    {
        return valueText(_watches[sensor]->field(), Digits::Few, limit);
    }

    std::uint64_t changes(std::size_t sensor) const override { return _watches[sensor]->changes(); }
    double age(std::size_t sensor, double now) const override { return _watches[sensor]->age(now); }

private:
    const std::vector<SensorWatch*> _watches;
};
} // namespace

std::unique_ptr<TableSensors> watchedSensors(std::vector<SensorWatch*> watches)
{
    return std::make_unique<WatchedSensors>(std::move(watches));
}
} // namespace Host
