#pragma once

#include "SceneFixture.h"
#include <functional>
#include <vector>

/// A handler kind that notes what it is asked, serves sensors whose label does not start with "no", and can be told to
/// fail in its factory, or to do something while it is offered a sensor.
class ProbeHandler : public SensorHandler {
public:
    class Observer : public SensorHandler::UpdateObserver {
    public:
        explicit Observer(std::vector<std::string>& events) : _events(events) {}
        ~Observer() override { _events.push_back("deleted"); }
        bool update(const TimeStamp& now) override
        {
            _events.push_back("update " + std::to_string(static_cast<int>(now)));
            return true;
        }
        void updateOutput(const TimeStamp& now) override
        {
            _events.push_back("output " + std::to_string(static_cast<int>(now)));
        }

    private:
        std::vector<std::string>& _events;
    };

    using SensorHandler::SensorHandler;
    ProbeHandler(ProbeHandler& other) : SensorHandler(other) {}

    SensorHandler::UpdateObserver* createUpdateObserver(DirectSensor* sensor) override
    {
        _events.push_back("in " + sensor->getLabel());
        const bool declined = sensor->getLabel().starts_with("no") || (_whileOffered && !_whileOffered(*this, *sensor));
        return declined ? nullptr : new Observer(_events);
    }
    SensorHandler::UpdateObserver* createOutputUpdateObserver(DirectSensor* sensor) override
    {
        _events.push_back("out " + sensor->getLabel());
        return new Observer(_events);
    }
    const SensorHandlerType& type() const override { return _type; }
    void addLabel(std::string&, std::string&) override {}
    void removeLabel(std::string&, std::string&) override {}
    void addParameter(std::string&, std::string&) override {}
    void removeParameter(std::string&, std::string&) override {}

    static SensorHandler* create(const std::string& name, const Merid::URL&)
    {
        return name == "refused" ? nullptr : new ProbeHandler(name);
    }

    static inline std::function<bool(SensorHandler&, DirectSensor&)> _whileOffered; // says whether it is served
    static inline std::vector<std::string> _events;
    static std::vector<std::string> takeEvents() { return std::exchange(_events, {}); }

    static inline SensorHandlerType _type{"Probe", &ProbeHandler::create};
};
