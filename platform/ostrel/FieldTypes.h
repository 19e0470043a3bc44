#pragma once

#include "osg/Image.h"
#include "ostrel/Field.h"
#include "ostrel/FieldValues.h"
#include "ostrel/Rotation.h"
#include <cstdint>
#include <string>
#include <vector>

// The one table of value kinds: code of the single-value class (the multiple-value class has the next one), name behind
// SF and MF, and type of the value.
#define OSTREL_FIELD_KINDS(ROW)                                                                                        \
    ROW(1, Bool, bool)                                                                                                 \
    ROW(3, Color, Color)                                                                                               \
    ROW(5, ColorRGBA, ColorRGBA)                                                                                       \
    ROW(7, Double, double)                                                                                             \
    ROW(9, Float, float)                                                                                               \
    ROW(11, Image, osg::ImagePtr)                                                                                      \
    ROW(13, Int32, std::int32_t)                                                                                       \
    ROW(15, Matrix3d, Matrix3d)                                                                                        \
    ROW(17, Matrix3f, Matrix3f)                                                                                        \
    ROW(19, Matrix4d, Matrix4d)                                                                                        \
    ROW(21, Matrix4f, Matrix4f)                                                                                        \
    ROW(23, Node, Node*)                                                                                               \
    ROW(25, Rotation, Rotation)                                                                                        \
    ROW(27, String, std::string)                                                                                       \
    ROW(29, Time, double)                                                                                              \
    ROW(31, Vec2d, Vec2d)                                                                                              \
    ROW(33, Vec2f, Vec2f)                                                                                              \
    ROW(35, Vec3d, Vec3d)                                                                                              \
    ROW(37, Vec3f, Vec3f)                                                                                              \
    ROW(39, Vec4d, Vec4d)                                                                                              \
    ROW(41, Vec4f, Vec4f)

namespace Ostrel {

/// The name of the class with this code, from the table.
const std::string& fieldTypeName(int code);

/// Copies a value from field to field. An image is copied into the image that is there: two fields never share one.
template <class T>
void copyFieldValue(T& to, const T& from)
{
    to = from;
}

inline void copyFieldValue(osg::ImagePtr& to, const osg::ImagePtr& from)
{
    *to = *from;
}

inline void copyFieldValue(std::vector<osg::ImagePtr>& to, const std::vector<osg::ImagePtr>& from)
{
    to.resize(from.size());
    for (std::size_t i = 0; i < from.size(); ++i)
        copyFieldValue(to[i], from[i]);
}

/// A field with one value. A node that it refers to is not owned.
template <int Code, class T>
class SingleField : public Field {
public:
    using Value = T;
    static constexpr int typeCode = Code;

    int getTypeCode() const override { return Code; }
    const std::string& getTypeName() const override { return fieldTypeName(Code); }
    void copyValue(const Field& from) override { copyFieldValue(_value, static_cast<const SingleField&>(from)._value); }

    /// Whoever changes the value calls processValueChange().
    Value& value() { return _value; }
    const Value& value() const { return _value; }

private:
    Value _value{};
};

/// A field with a sequence of values; empty at first.
template <int Code, class T>
class MultiField : public Field {
public:
    using Element = T;
    using Values = std::vector<T>;
    static constexpr int typeCode = Code;

    int getTypeCode() const override { return Code; }
    const std::string& getTypeName() const override { return fieldTypeName(Code); }
    void copyValue(const Field& from) override
    {
        copyFieldValue(_values, static_cast<const MultiField&>(from)._values);
    }

    /// Whoever changes the values calls processValueChange().
    Values& values() { return _values; }
    const Values& values() const { return _values; }

private:
    Values _values;
};

// SFBool, MFBool, SFColor and so on. Instantiated once, in FieldTypes.cpp, which keeps their tables in one library.
#define OSTREL_FIELD_CLASSES(CODE, NAME, TYPE)                                                                         \
    using SF##NAME = SingleField<CODE, TYPE>;                                                                          \
    using MF##NAME = MultiField<CODE + 1, TYPE>;                                                                       \
    extern template class SingleField<CODE, TYPE>;                                                                     \
    extern template class MultiField<CODE + 1, TYPE>;
OSTREL_FIELD_KINDS(OSTREL_FIELD_CLASSES)
#undef OSTREL_FIELD_CLASSES

} // namespace Ostrel
