#pragma once

#include "ostrel/DirectSensor.h"
#include "sensorManager/LogMessage.h"
#include "sensorManager/SensorHandler.h"
#include <map>
#include <ostream>
#include <string>

// What the device kinds have in common.
namespace Ostrel {

using DeviceLabels = std::map<std::string, std::string>;

/// Sets the label, and hands its value to every observer of this kind whose sensor carries it.
template <class KindObserver>
void setDeviceLabel(DeviceLabels& labels, const std::map<DirectSensor*, Observer*>& observers, const std::string& name,
                    const std::string& value)
{
    labels[name] = value;
    for (const auto& [key, observer] : observers) {
        auto* const served = dynamic_cast<KindObserver*>(observer);
        if (served && served->getSensor() && served->getSensor()->getLabel() == name)
            served->init(value);
    }
}

/// Writes one line without header, if the log wants to hear of this module at all.
template <class... Texts>
void writePlainLine(const Texts&... texts)
{
    if (!osg::osgLogP)
        osg::doInitLog();
    osg::Log::_pLogLock->acquire();
    std::ostream& stream =
        osg::osgLogP->checkModule(LogModuleName) ? osg::osgLogP->stream(0) : osg::osgLogP->nilStream();
    (stream << ... << texts) << std::endl;
    osg::Log::_pLogLock->release();
}

} // namespace Ostrel
