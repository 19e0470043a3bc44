#include "ostrel/RefCountObject.h"

#include <cassert>

namespace Ostrel {

RefCountObject::~RefCountObject() = default;

void RefCountObject::shutdown() const {}

void RefCountObject::unref() const
{
    assert(_references > 0);
    if (--_references > 0)
        return;
    shutdown();
    delete this;
}

} // namespace Ostrel
