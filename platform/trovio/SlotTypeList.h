#pragma once

#include "trovio/Forward.h"
#include <string>
#include <vector>

/// The one list of element types, each as ROW(type, name). WRAP makes the type that travels, SUFFIX its name's end.
#define TROVIO_PLAIN_ELEMENTS_AS(ROW, WRAP, SUFFIX)                                                                    \
    ROW(WRAP(bool), "Bool" SUFFIX)                                                                                     \
    ROW(WRAP(Trovio::Color), "Color" SUFFIX)                                                                           \
    ROW(WRAP(Trovio::ColorRGBA), "ColorRGBA" SUFFIX)                                                                   \
    ROW(WRAP(double), "Double" SUFFIX)                                                                                 \
    ROW(WRAP(float), "Float" SUFFIX)                                                                                   \
    ROW(WRAP(long), "Long" SUFFIX)                                                                                     \
    ROW(WRAP(Trovio::Matrix3<double>), "Matrix3d" SUFFIX)                                                              \
    ROW(WRAP(Trovio::Matrix3<float>), "Matrix3f" SUFFIX)                                                               \
    ROW(WRAP(Trovio::Matrix4<double>), "Matrix4d" SUFFIX)                                                              \
    ROW(WRAP(Trovio::Matrix4<float>), "Matrix4f" SUFFIX)                                                               \
    ROW(WRAP(Trovio::Rotation), "Rotation" SUFFIX)                                                                     \
    ROW(WRAP(std::string), "String" SUFFIX)                                                                            \
    ROW(WRAP(Trovio::Time), "Time" SUFFIX)                                                                             \
    ROW(WRAP(Trovio::Vec2<double>), "Vec2d" SUFFIX)                                                                    \
    ROW(WRAP(Trovio::Vec2<float>), "Vec2f" SUFFIX)                                                                     \
    ROW(WRAP(Trovio::Vec3<double>), "Vec3d" SUFFIX)                                                                    \
    ROW(WRAP(Trovio::Vec3<float>), "Vec3f" SUFFIX)                                                                     \
    ROW(WRAP(Trovio::Vec4<double>), "Vec4d" SUFFIX)                                                                    \
    ROW(WRAP(Trovio::Vec4<float>), "Vec4f" SUFFIX)

#define TROVIO_BY_VALUE(type) type
#define TROVIO_AS_VECTOR(type) std::vector<type>
#define TROVIO_AS_SHARED_VECTOR(type) Trovio::SmartPtr<std::vector<type>>

/// The 19 types that travel as plain values. ROW(type, name).
#define TROVIO_PLAIN_TYPES(ROW) TROVIO_PLAIN_ELEMENTS_AS(ROW, TROVIO_BY_VALUE, "")

/// The 21 types that pools hold: an image travels alone as a handle, in a vector by value. ROW(type, name).
#define TROVIO_POOLED_TYPES(ROW)                                                                                       \
    ROW(Trovio::Image, "Image")                                                                                        \
    TROVIO_PLAIN_ELEMENTS_AS(ROW, TROVIO_AS_VECTOR, "[]")                                                              \
    ROW(std::vector<Trovio::Image>, "Image[]")

/// The 40 slot value types. ROW(type, name).
#define TROVIO_SLOT_TYPES(ROW)                                                                                         \
    TROVIO_PLAIN_TYPES(ROW)                                                                                            \
    TROVIO_SHARED_TYPES(ROW)

/// The 21 of them that travel as handles. ROW(type, name).
#define TROVIO_SHARED_TYPES(ROW)                                                                                       \
    ROW(Trovio::SmartPtr<Trovio::Image>, "Image")                                                                      \
    TROVIO_PLAIN_ELEMENTS_AS(ROW, TROVIO_AS_SHARED_VECTOR, "[]")                                                       \
    ROW(Trovio::SmartPtr<std::vector<Trovio::Image>>, "Image[]")
