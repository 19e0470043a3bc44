#pragma once

// Every slot value type.
#include "trovio/Color.h"
#include "trovio/Image.h"
#include "trovio/Matrix.h"
#include "trovio/Rotation.h"
#include "trovio/SmartPtr.h"
#include "trovio/Time.h"
#include "trovio/Vec.h"
#include <string>
#include <vector>

namespace Trovio {

/// A multiple value: an array that its readers share.
template <class E>
using SharedVector = SmartPtr<std::vector<E>>;

using SharedImage = SmartPtr<Image>;

} // namespace Trovio
