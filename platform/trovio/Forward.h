#pragma once

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
