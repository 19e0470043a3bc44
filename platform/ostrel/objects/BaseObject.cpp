#include "ostrel/BaseObject.h"

namespace Ostrel {

int BaseObject::_objCount = 0;

BaseObject::~BaseObject()
{
    --_objCount;
}

} // namespace Ostrel
