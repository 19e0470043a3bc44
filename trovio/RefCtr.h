#pragma once

#include "trovio/BasicRefCtr.h"
#include "trovio/Forward.h"

namespace Trovio {

/// A pooled object and the number of its holders.
template <class T>
class RefCtr : public BasicRefCtr {
public:
    RefCtr() = default;

    T& getObject() { return _object; }

private:
    T _object{};
};

} // namespace Trovio
