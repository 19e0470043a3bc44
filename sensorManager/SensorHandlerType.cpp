#include "sensorManager/SensorHandlerType.h"

#include "sensorManager/LogMessage.h"
#include <algorithm>

namespace Ostrel {

namespace {
constexpr char logFile[] = "sensorManager/SensorHandlerType";
}

std::list<SensorHandlerType*>* SensorHandlerType::_typeBag;

SensorHandlerType::SensorHandlerType(const std::string& key, Factory factory) : _name(key), _factory(factory)
{
    if (!_typeBag)
        _typeBag = new std::list<SensorHandlerType*>;
    _typeBag->push_back(this);
}

SensorHandlerType::SensorHandlerType(SensorHandlerType&) : BaseObject(), _factory(nullptr)
{
    OSTREL_LOG(LogLevel::Fatal, logFile, "Running SensorHanderType copy constructor\n");
}

SensorHandlerType::~SensorHandlerType()
{
    if (!_typeBag)
        return;
    _typeBag->remove(this);
    if (_typeBag->empty()) {
        delete _typeBag;
        _typeBag = nullptr;
    }
}

SensorHandlerType* SensorHandlerType::find(const std::string& key)
{
    if (!_typeBag)
        return nullptr;
    const auto found = std::find_if(_typeBag->begin(), _typeBag->end(),
                                    [&key](const SensorHandlerType* type) { return type && type->_name == key; });
    return found == _typeBag->end() ? nullptr : *found;
}

SensorHandler* SensorHandlerType::createHandler(const std::string& name, const Merid::URL& url)
{
    return _factory ? _factory(name, url) : nullptr;
}

} // namespace Ostrel
