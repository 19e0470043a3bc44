#include "ostrel/Observer.h"

namespace Ostrel {

Observer::Observer(const char* name) : _observerName(name ? name : "") {}

Observer::~Observer()
{
    for (const auto& [subject, entry] : _attachments)
        subject->drop(entry);
}

} // namespace Ostrel
