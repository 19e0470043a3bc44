#pragma once

#include "SceneFixture.h"
#include "ostrel/DirectSensorProc.h"
#include "ostrel/FieldTypes.h"
#include "sensorManager/TrovioSensorHandler.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Namespace.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include <gtest/gtest.h>

/// The framework is open, and a context has one "Trovio" handler.
class Bridge : public ::testing::Test {
protected:
    Bridge()
    {
        osg::osgLogP->setInfoShown(false);
        Trovio::Root::init();
        _handler = static_cast<TrovioSensorHandler*>(
            SensorManager::requestManager(_context)->addHandler("Trovio", "bridge", someURL()));
    }
    ~Bridge() override
    {
        _sensors.clear();
        SensorManager::requestManager(_context)->delHandler(_handler);
        Trovio::Root::shutdown();
    }

    DirectSensor& add(std::string_view fieldType, const std::string& label, bool output = false,
                      unsigned bufferSize = 0)
    {
        _sensors.push_back(makeSensor(fieldType, label, output, bufferSize));
        _sensors.back()->setContext(&_context);
        return *_sensors.back();
    }

    static void notify(DirectSensor& sensor, double now)
    {
        sensor.getDirectSensorProc()->getUpdateSubject().notify(now);
    }

    template <class FieldT>
    static FieldT& field(DirectSensor& sensor)
    {
        return dynamic_cast<FieldT&>(*sensor.getField());
    }

    template <class SlotT>
    SlotT& slot(DirectSensor& sensor)
    {
        return dynamic_cast<SlotT&>(*_handler->getSlot(&sensor));
    }

    Context _context;
    TrovioSensorHandler* _handler = nullptr;
    std::vector<std::unique_ptr<DirectSensor>> _sensors;
};
