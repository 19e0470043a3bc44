#pragma once

#include "benchmarks/road/Road.h"
#include "sensorManager/Conversions.h"
#include "trovio/TryPop.h"
#include <list>
#include <map>
#include <vector>

namespace Bench {

/// Ten thousand sensors that take values. In a frame every hundredth gets one.
template <class FieldT, class Value>
class InputRoad {
public:
    static constexpr std::size_t sensors = 10'000;

    explicit InputRoad(const Value& value) : _record(value, Trovio::Time(1e9))
    {
        for (std::size_t i = 0; i < sensors; ++i) {
            Ostrel::DirectSensor& sensor = _road.template add<FieldT>(false);
            auto& slot = _road.template slot<Trovio::InSlot<Value>>(sensor);
            _slots.push_back(&slot);
            _sensors.push_back(&sensor);
            _row.push_back({&sensor, &slot, static_cast<FieldT*>(sensor.getField())});
            _places.emplace(i, std::list<Place>{_row.back()});
        }
    }

    /// As the runtime does it: subject, observer, slot, field, change.
    void frame()
    {
        push();
        _road.scene().frame(now);
    }

    /// By hand, over the same sensors, slots and fields, whose types are known: each slot is locked to look into it.
    void walk()
    {
        push();
        for (auto& [number, places] : _places)
            for (Place& place : places)
                if (!place._sensor->isOutput())
                    drain(place);
    }

    /// The same as tight as it can be: in one row, looking without a lock, and taking under the lock that looks again.
    void walkTightly()
    {
        push();
        for (Place& place : _row)
            if (place._slot->mayHoldRecord() && !place._sensor->isOutput())
                Trovio::tryPop<Value>(*place._slot, [&place](auto&& record) { give(record, place); });
    }

private:
    static constexpr double now = 1e9;
    static constexpr std::size_t share = 100;

    struct Place {
        Ostrel::DirectSensor* _sensor;
        Trovio::InSlot<Value>* _slot;
        FieldT* _field;
    };

    void push()
    {
        for (std::size_t i = _number++ % share; i < sensors; i += share) {
            _sensors[i]->clearMarks();
            _slots[i]->push(_record);
        }
    }

    static void drain(Place& place)
    {
        while (!place._slot->empty()) {
            auto record = place._slot->pop();
            give(record, place);
        }
    }

    static void give(Trovio::Data<Value>& record, const Place& place)
    {
        Ostrel::Conversions::toField(record.getValue(), *place._field);
        place._field->processValueChange(now, Ostrel::CallerOutside);
    }

    OpenRoot _root;
    Road _road;
    const Trovio::Data<Value> _record;
    std::size_t _number = 0;
    std::vector<Ostrel::DirectSensor*> _sensors;
    std::vector<Trovio::InSlot<Value>*> _slots;
    std::vector<Place> _row;
    std::map<std::size_t, std::list<Place>> _places;
};

} // namespace Bench
