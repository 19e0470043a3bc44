#include "sensorManager/OTSensorHandler.h"

#include "ostrel/DirectSensorProc.h"
#include "ostrel/Field.h"
#include <memory>

namespace Ostrel {

namespace {

constexpr char logFile[] = "sensorManager/OTSensorHandler";
constexpr LogOrigin constructorOrigin{logFile, 69, "Ostrel::OTSensorHandler::OTSensorHandler(const string&)"};
constexpr LogOrigin removeLabelOrigin{logFile, 383,
                                      "virtual void Ostrel::OTSensorHandler::removeLabel(std::string&, std::string&)"};
constexpr LogOrigin removeParameterOrigin{
    logFile, 419, "virtual void Ostrel::OTSensorHandler::removeParameter(std::string&, std::string&)"};

} // namespace

SensorHandlerType OTSensorHandler::_type("OT", &OTSensorHandler::create);
int OTSensorHandler::_objCount = 0;

OTSensorHandler::OTSensorHandler(const std::string& name) : SensorHandler(name), _flag(false)
{
    OSTREL_LOG_FROM(LogLevel::Fatal, constructorOrigin, "Can not construct OTSensorHandler\n");
}

OTSensorHandler::OTSensorHandler(OTSensorHandler& other) : SensorHandler(other)
{
    ++_objCount;
}

OTSensorHandler::~OTSensorHandler()
{
    --_objCount;
}

SensorHandler* OTSensorHandler::create(const std::string& name, const Merid::URL&)
{
    return new OTSensorHandler(name);
}

bool OTSensorHandler::init()
{
    return true;
}

const SensorHandlerType& OTSensorHandler::type() const
{
    return _type;
}

SensorHandler::UpdateObserver* OTSensorHandler::createUpdateObserver(DirectSensor* sensor)
{
    auto observer = std::make_unique<UpdateObserver>();
    DirectSensorProc* const proc = sensor ? sensor->getDirectSensorProc() : nullptr;
    if (Field* const field = proc ? proc->getField() : nullptr)
        writePlainLine("createUpdateObserver() ", field->getTypeName());
    return observer.release();
}

void OTSensorHandler::addLabel(std::string& name, std::string& value)
{
    setDeviceLabel<UpdateObserver>(_labels, observers(), name, value);
}

void OTSensorHandler::removeLabel(std::string&, std::string&)
{
    OSTREL_LOG_FROM(LogLevel::Warning, removeLabelOrigin, "OTSensorHandler::removeLabel(); not impl. \n");
}

void OTSensorHandler::addParameter(std::string&, std::string&)
{
    writePlainLine("addParameters: ");
}

void OTSensorHandler::removeParameter(std::string&, std::string&)
{
    OSTREL_LOG_FROM(LogLevel::Warning, removeParameterOrigin,
                    "OTSensorHandler::removeParameters(); parameters not used\n");
}

bool OTSensorHandler::update(const TimeStamp&)
{
    return true;
}

bool OTSensorHandler::UpdateObserver::update(const TimeStamp&)
{
    return false;
}

bool OTSensorHandler::UpdateObserver::init(const std::string&)
{
    return false;
}

} // namespace Ostrel
