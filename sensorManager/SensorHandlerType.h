#pragma once

#include "merid/URL.h"
#include "ostrel/BaseObject.h"
#include <list>
#include <string>

namespace Ostrel {

class SensorHandler;

/// The registry of handler kinds: one entry a kind, each a static object of its class. An entry is found from its
/// construction to its destruction, so kinds come and go with the libraries that hold them.
/// Threads: the scene thread; load-time and unload-time code.
class SensorHandlerType : public BaseObject {
public:
    using Factory = SensorHandler* (*)(const std::string& name, const Merid::URL& url);

    /// Enters the kind under its key. A key may stand twice; the earlier entry is the one that is found.
    SensorHandlerType(const std::string& key, Factory factory);

    /// A logged misuse: the copy has no key and no factory, and is not in the registry.
    SensorHandlerType(SensorHandlerType&);
    SensorHandlerType& operator=(const SensorHandlerType&) = delete;
    ~SensorHandlerType() override;

    /// Null if no kind has this key, compared byte for byte.
    static SensorHandlerType* find(const std::string& key);

    /// A new handler that the caller owns, or null if this kind cannot make one. Says nothing.
    SensorHandler* createHandler(const std::string& name, const Merid::URL& url);

    const std::string& getName() const { return _name; }

private:
    std::string _name;
    Factory _factory;

    // A bare pointer in zeroed storage: the first entry to be built finds it usable in whatever order units load.
    static std::list<SensorHandlerType*>* _typeBag;
};

/// Makes every handler kind of this library part of the program that calls it. Returns true.
bool initSensorManager();

} // namespace Ostrel
