#pragma once

#include "benchmarks/road/Road.h"
#include "sensorManager/Conversions.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"
#include <list>
#include <map>
#include <vector>

namespace Bench {

/// Ten thousand sensors that send their values, each to an in-slot, in every frame.
template <class FieldT, class Value>
class OutputRoad {
public:
    static constexpr std::size_t sensors = 10'000;

    OutputRoad()
    {
        for (std::size_t i = 0; i < sensors; ++i) {
            Ostrel::DirectSensor& sensor = _road.template add<FieldT>(true);
            auto& out = _road.template slot<Trovio::OutSlot<Value>>(sensor);
            out.connect(_ins.emplace_back(std::make_unique<Trovio::InSlot<Value>>("in")).get());
            _row.push_back({&sensor, &out, static_cast<FieldT*>(sensor.getField())});
            _places.emplace(i, std::list<Place>{_row.back()});
        }
    }
    OutputRoad(const OutputRoad&) = delete;
    OutputRoad& operator=(const OutputRoad&) = delete;
    ~OutputRoad()
    {
        for (auto& [number, places] : _places)
            places.front()._out->disconnect(_ins[number].get());
    }

    void frame() { _road.scene().frame(1e9); }

    void walk()
    {
        for (auto& [number, places] : _places)
            for (Place& place : places)
                if (place._sensor->isOutput())
                    send(place);
    }

    void walkTightly()
    {
        for (Place& place : _row)
            if (place._sensor->isOutput())
                send(place);
    }

private:
    struct Place {
        Ostrel::DirectSensor* _sensor;
        Trovio::OutSlot<Value>* _out;
        FieldT* _field;
    };

    static void send(Place& place)
    {
        Trovio::Data<Value> record;
        Ostrel::Conversions::toSlot(*place._field, record.getValue());
        record.setTimeStamp();
        place._out->push(record);
    }

    OpenRoot _root;
    Road _road;
    std::vector<std::unique_ptr<Trovio::InSlot<Value>>> _ins;
    std::vector<Place> _row;
    std::map<std::size_t, std::list<Place>> _places;
};

} // namespace Bench
