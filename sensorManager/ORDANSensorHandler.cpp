#include "sensorManager/ORDANSensorHandler.h"

#include "ostrel/DirectSensorProc.h"
#include <memory>

namespace Ostrel {

namespace {

constexpr char logFile[] = "sensorManager/ORDANSensorHandler";
constexpr LogOrigin constructorOrigin{logFile, 71, "Ostrel::ORDANSensorHandler::ORDANSensorHandler(const string&)"};
constexpr LogOrigin createUpdateObserverOrigin{
    logFile, 213,
    "virtual Ostrel::SensorHandler::UpdateObserver* "
    "Ostrel::ORDANSensorHandler::createUpdateObserver(Ostrel::DirectSensor*)"};
constexpr LogOrigin removeLabelOrigin{
    logFile, 445, "virtual void Ostrel::ORDANSensorHandler::removeLabel(std::string&, std::string&)"};
constexpr LogOrigin addParameterOrigin{
    logFile, 458, "virtual void Ostrel::ORDANSensorHandler::addParameter(std::string&, std::string&)"};
constexpr LogOrigin removeParameterOrigin{
    logFile, 471, "virtual void Ostrel::ORDANSensorHandler::removeParameter(std::string&, std::string&)"};

} // namespace

SensorHandlerType ORDANSensorHandler::_type("ORDAN", &ORDANSensorHandler::create);
int ORDANSensorHandler::_objCount = 0;
void* ORDANSensorHandler::_ordan = nullptr;

ORDANSensorHandler::ORDANSensorHandler(const std::string& name) : SensorHandler(name)
{
    OSTREL_LOG_FROM(LogLevel::Fatal, constructorOrigin, "Can not construct ORDANSensorHandler\n");
    ++_objCount;
}

ORDANSensorHandler::ORDANSensorHandler(ORDANSensorHandler& other) : SensorHandler(other)
{
    ++_objCount;
}

ORDANSensorHandler::~ORDANSensorHandler()
{
    --_objCount;
}

SensorHandler* ORDANSensorHandler::create(const std::string& name, const Merid::URL&)
{
    return new ORDANSensorHandler(name);
}

bool ORDANSensorHandler::init()
{
    return true;
}

const SensorHandlerType& ORDANSensorHandler::type() const
{
    return _type;
}

SensorHandler::UpdateObserver* ORDANSensorHandler::createUpdateObserver(DirectSensor* sensor)
{
    auto observer = std::make_unique<UpdateObserver>();
    if (!sensor) {
        OSTREL_LOG_FROM(LogLevel::Fatal, createUpdateObserverOrigin,
                        "No Sensor in ORDANSensorHandler::createUpdateObserver()\n");
        return observer.release();
    }
    const auto known = _labels.find(sensor->getLabel());
    if (known != _labels.end()) {
        observer->_sensor = sensor;
        observer->_field = sensor->getDirectSensorProc()->getField();
        observer->init(known->second);
    }
    return observer.release();
}

void ORDANSensorHandler::addLabel(std::string& name, std::string& value)
{
    setDeviceLabel<UpdateObserver>(_labels, observers(), name, value);
}

void ORDANSensorHandler::removeLabel(std::string&, std::string&)
{
    OSTREL_LOG_FROM(LogLevel::Warning, removeLabelOrigin, "ORDANSensorHandler::removeLabel(); not impl. \n");
}

void ORDANSensorHandler::addParameter(std::string&, std::string&)
{
    // The text names setParameters on purpose.
    OSTREL_LOG_FROM(LogLevel::Warning, addParameterOrigin,
                    "ORDANSensorHandler::setParameters(); parameters not used\n");
}

void ORDANSensorHandler::removeParameter(std::string&, std::string&)
{
    OSTREL_LOG_FROM(LogLevel::Warning, removeParameterOrigin,
                    "ORDANSensorHandler::removeParameters(); parameters not used\n");
}

bool ORDANSensorHandler::update(const TimeStamp&)
{
    return true;
}

bool ORDANSensorHandler::UpdateObserver::update(const TimeStamp&)
{
    return false;
}

bool ORDANSensorHandler::UpdateObserver::init(const std::string&)
{
    return false;
}

} // namespace Ostrel
