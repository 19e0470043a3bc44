#pragma once

#include "ostrel/FieldTypes.h"
#include "trovio/SlotTypes.h"
#include "trovio/Values.h"

namespace Ostrel {

/// The one table from field type code to field class to slot value type. ROW(code, name, element): SF##name has the
/// code, MF##name the next one; a single value travels as the element, a multiple value as a shared vector of it.
/// A code without a row has no slot.
#define OSTREL_FIELD_TYPES(ROW)                                                                                        \
    ROW(1, Bool, bool)                                                                                                 \
    ROW(3, Color, Trovio::Color)                                                                                       \
    ROW(5, ColorRGBA, Trovio::ColorRGBA)                                                                               \
    ROW(7, Double, double)                                                                                             \
    ROW(9, Float, float)                                                                                               \
    ROW(11, Image, Trovio::Image)                                                                                      \
    ROW(13, Int32, long)                                                                                               \
    ROW(15, Matrix3d, Trovio::Matrix3<double>)                                                                         \
    ROW(17, Matrix3f, Trovio::Matrix3<float>)                                                                          \
    ROW(19, Matrix4d, Trovio::Matrix4<double>)                                                                         \
    ROW(21, Matrix4f, Trovio::Matrix4<float>)                                                                          \
    ROW(25, Rotation, Trovio::Rotation)                                                                                \
    ROW(27, String, std::string)                                                                                       \
    ROW(29, Time, Trovio::Time)                                                                                        \
    ROW(31, Vec2d, Trovio::Vec2<double>)                                                                               \
    ROW(33, Vec2f, Trovio::Vec2<float>)                                                                                \
    ROW(35, Vec3d, Trovio::Vec3<double>)                                                                               \
    ROW(37, Vec3f, Trovio::Vec3<float>)                                                                                \
    ROW(39, Vec4d, Trovio::Vec4<double>)                                                                               \
    ROW(41, Vec4f, Trovio::Vec4<float>)

/// How a single value travels: images by handle, all else by value.
template <class Element>
struct SingleSlotValue {
    using Type = Element;
};
template <>
struct SingleSlotValue<Trovio::Image> {
    using Type = Trovio::SharedImage;
};

/// A row of the table, as the argument of a visit.
template <class FieldClassT, class SlotValueT>
struct FieldRow {
    using FieldType = FieldClassT;
    using SlotValue = SlotValueT;
};

/// Whether it is one of the two rows of images.
template <class Row>
constexpr bool isImage =
    std::is_same_v<typename Row::FieldType, SFImage> || std::is_same_v<typename Row::FieldType, MFImage>;

/// Calls visit(FieldRow<…>()) for the row of that code. False, and no call, for a code without a row.
template <class Visit>
constexpr bool withFieldType(int code, Visit&& visit)
{
    switch (code) {
#define OSTREL_FIELD_CASES(code, name, element)                                                                        \
    case code:                                                                                                         \
        visit(FieldRow<SF##name, SingleSlotValue<element>::Type>());                                                   \
        return true;                                                                                                   \
    case code + 1:                                                                                                     \
        visit(FieldRow<MF##name, Trovio::SharedVector<element>>());                                                    \
        return true;
        OSTREL_FIELD_TYPES(OSTREL_FIELD_CASES)
#undef OSTREL_FIELD_CASES
    default:
        return false;
    }
}

/// Whether the table has a row with the right code for each field class but SFNode and MFNode, and one for each slot
/// value type.
constexpr bool isTableComplete()
{
    bool complete = true;
    int rows = 0, slotTypes = 0;
    const auto check = [&](int code) {
        const bool found = withFieldType(code, [&]<class Row>(Row) {
            complete = complete && Row::FieldType::typeCode == code;
            ++rows;
        });
        complete = complete && (found || code == SFNode::typeCode || code == MFNode::typeCode);
    };
#define OSTREL_CHECK_KIND(code, name, type)                                                                            \
    check(code);                                                                                                       \
    check(code + 1);
    OSTREL_FIELD_KINDS(OSTREL_CHECK_KIND)
#undef OSTREL_CHECK_KIND
    Trovio::forEachSlotType([&slotTypes](auto) { ++slotTypes; });
    return complete && rows == slotTypes;
}
static_assert(isTableComplete(), "this table, that of the field classes and that of the slot value types disagree");

} // namespace Ostrel
