#pragma once

#include <string>

namespace Explain {

/// The slot type that a field type with that code travels as; "none" if it has no slot.
std::string slotTypeName(int code);

/// The field type that travels as that slot type: "SFVec3f" for "Vec3f". Empty if there is none.
std::string fieldTypeFor(const std::string& slotType);
} // namespace Explain
