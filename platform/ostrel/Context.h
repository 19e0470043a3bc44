#pragma once

#include "ostrel/AttachmentBag.h"

namespace Ostrel {

/// One running scene, as far as its nodes and their services share something. Outlives the nodes that it is given to.
class Context : public AttachmentBag {};

} // namespace Ostrel
