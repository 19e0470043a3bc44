#include "sensorManager/TORVASensorHandler.h"

namespace Ostrel {

namespace {

constexpr LogOrigin removeLabelOrigin{
    "sensorManager/TORVASensorHandler", 283,
    "virtual void Ostrel::TORVASensorHandler::removeLabel(std::string&, std::string&)"};

} // namespace

SensorHandlerType TORVASensorHandler::_type("TORVA", &TORVASensorHandler::create);
bool TORVASensorHandler::_torvaInitialized = false;

TORVASensorHandler::TORVASensorHandler(const std::string& name) : SensorHandler(name) {}

TORVASensorHandler::TORVASensorHandler(TORVASensorHandler& other) : SensorHandler(other) {}

TORVASensorHandler::~TORVASensorHandler() = default;

SensorHandler* TORVASensorHandler::create(const std::string&, const Merid::URL&)
{
    return nullptr;
}

bool TORVASensorHandler::init()
{
    return true;
}

const SensorHandlerType& TORVASensorHandler::type() const
{
    return _type;
}

SensorHandler::UpdateObserver* TORVASensorHandler::createUpdateObserver(DirectSensor*)
{
    return nullptr;
}

SensorHandler::UpdateObserver* TORVASensorHandler::createOutputUpdateObserver(DirectSensor*)
{
    return nullptr;
}

void TORVASensorHandler::addLabel(std::string&, std::string&) {}

void TORVASensorHandler::removeLabel(std::string&, std::string&)
{
    OSTREL_LOG_FROM(LogLevel::Warning, removeLabelOrigin, "TORVASensorHandler::removeLabel(); not impl. \n");
}

void TORVASensorHandler::addParameter(std::string& name, std::string& value)
{
    _parameters[name] = value;
}

void TORVASensorHandler::removeParameter(std::string& name, std::string&)
{
    _parameters.erase(name);
}

bool TORVASensorHandler::update(const TimeStamp&)
{
    return false;
}

bool TORVASensorHandler::UpdateObserver::update(const TimeStamp&)
{
    return false;
}

void TORVASensorHandler::UpdateObserver::updateOutput(const TimeStamp&) {}

bool TORVASensorHandler::UpdateObserver::init(const std::string&, bool)
{
    return true;
}

} // namespace Ostrel
