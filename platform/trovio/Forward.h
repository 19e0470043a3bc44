#pragma once

#include <string>
#include <vector>

namespace Trovio {

template <class T>
class Vec2;
template <class T>
class Vec3;
template <class T>
class Vec4;
template <class T>
class Matrix3;
template <class T>
class Matrix4;
class Rotation;
class Color;
class ColorRGBA;
class Time;
class Image;

template <class T>
class SmartPtr;

} // namespace Trovio

/// The one list of element types: each travels alone and as a shared vector. ROW(type, name).
#define TROVIO_PLAIN_ELEMENTS(ROW)                                                                                     \
    ROW(bool, "Bool")                                                                                                  \
    ROW(Trovio::Color, "Color")                                                                                        \
    ROW(Trovio::ColorRGBA, "ColorRGBA")                                                                                \
    ROW(double, "Double")                                                                                              \
    ROW(float, "Float")                                                                                                \
    ROW(long, "Long")                                                                                                  \
    ROW(Trovio::Matrix3<double>, "Matrix3d")                                                                           \
    ROW(Trovio::Matrix3<float>, "Matrix3f")                                                                            \
    ROW(Trovio::Matrix4<double>, "Matrix4d")                                                                           \
    ROW(Trovio::Matrix4<float>, "Matrix4f")                                                                            \
    ROW(Trovio::Rotation, "Rotation")                                                                                  \
    ROW(std::string, "String")                                                                                         \
    ROW(Trovio::Time, "Time")                                                                                          \
    ROW(Trovio::Vec2<double>, "Vec2d")                                                                                 \
    ROW(Trovio::Vec2<float>, "Vec2f")                                                                                  \
    ROW(Trovio::Vec3<double>, "Vec3d")                                                                                 \
    ROW(Trovio::Vec3<float>, "Vec3f")                                                                                  \
    ROW(Trovio::Vec4<double>, "Vec4d")                                                                                 \
    ROW(Trovio::Vec4<float>, "Vec4f")

/// All of them: an image travels alone as SmartPtr<Image>, in a vector by value.
#define TROVIO_ELEMENTS(ROW)                                                                                           \
    TROVIO_PLAIN_ELEMENTS(ROW)                                                                                         \
    ROW(Trovio::Image, "Image")
