#include "ostrel/DirectSensorProc.h"

#include <utility>

namespace Ostrel {

DirectSensorProc::DirectSensorProc(std::unique_ptr<Field> field) : _field(std::move(field)) {}

// The two subjects are never destroyed: observers of libraries that are unloaded late still detach from them.
Subject& DirectSensorProc::registerSubject()
{
    static Subject* const subject = new Subject;
    return *subject;
}

Subject& DirectSensorProc::unregisterSubject()
{
    static Subject* const subject = new Subject;
    return *subject;
}

const FieldDescription& DirectSensorProc::valueDescription()
{
    static const auto* const description =
        new FieldDescription{"value", 1, FieldDescription::Forwards, FieldAccess::Exposed};
    return *description;
}

} // namespace Ostrel
