#pragma once

#include "ostrel/FieldTypes.h"

#include <stdexcept>

namespace Scenes {

/// Whether a field class holds a sequence.
template <class FieldClass>
concept Multiple = requires
{
    typename FieldClass::Values;
};

/// Calls `action` with the field as its own class. Throws std::invalid_argument for a class of another runtime.
template <class Action>
decltype(auto) visitField(Ostrel::Field& field, Action&& action)
{
    switch (field.getTypeCode()) {
#define HOST_VISIT(CODE, NAME, TYPE)                                                                                   \
    case CODE:                                                                                                         \
        return action(static_cast<Ostrel::SF##NAME&>(field));                                                          \
    case CODE + 1:                                                                                                     \
        return action(static_cast<Ostrel::MF##NAME&>(field));
        OSTREL_FIELD_KINDS(HOST_VISIT)
#undef HOST_VISIT
    }
    throw std::invalid_argument("unknown field class " + field.getTypeName());
}
} // namespace Scenes
