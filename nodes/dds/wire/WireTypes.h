#pragma once

#include "SlotSamples.h" // generated
#include "trovio/Values.h"

namespace Trovio::Nodes {

/// The one list of what travels for what: ROW(element, name in SlotSamples.idl).
#define TROVIO_WIRE_ELEMENTS(ROW)                                                                                      \
    ROW(bool, Bool)                                                                                                    \
    ROW(Color, Color)                                                                                                  \
    ROW(ColorRGBA, ColorRGBA)                                                                                          \
    ROW(double, Double)                                                                                                \
    ROW(float, Float)                                                                                                  \
    ROW(Image, Image)                                                                                                  \
    ROW(long, Long)                                                                                                    \
    ROW(Matrix3<double>, Matrix3d)                                                                                     \
    ROW(Matrix3<float>, Matrix3f)                                                                                      \
    ROW(Matrix4<double>, Matrix4d)                                                                                     \
    ROW(Matrix4<float>, Matrix4f)                                                                                      \
    ROW(Rotation, Rotation)                                                                                            \
    ROW(std::string, String)                                                                                           \
    ROW(Time, Time)                                                                                                    \
    ROW(Vec2<double>, Vec2d)                                                                                           \
    ROW(Vec2<float>, Vec2f)                                                                                            \
    ROW(Vec3<double>, Vec3d)                                                                                           \
    ROW(Vec3<float>, Vec3f)                                                                                            \
    ROW(Vec4<double>, Vec4d)                                                                                           \
    ROW(Vec4<float>, Vec4f)

/// The samples of one element and of many.
template <class E>
struct WireElement;

#define TROVIO_WIRE_ELEMENT(element, name)                                                                             \
    template <>                                                                                                        \
    struct WireElement<element> {                                                                                      \
        using One = Trovio_Wire_##name;                                                                                \
        using Many = Trovio_Wire_##name##Array;                                                                        \
        static const dds_topic_descriptor_t& one() { return Trovio_Wire_##name##_desc; }                               \
        static const dds_topic_descriptor_t& many() { return Trovio_Wire_##name##Array_desc; }                         \
    };
TROVIO_WIRE_ELEMENTS(TROVIO_WIRE_ELEMENT)
#undef TROVIO_WIRE_ELEMENT

/// The sample of a slot value type T, and the descriptor of its topic type.
template <class T>
struct WireType {
    using Element = T;
    using Sample = typename WireElement<T>::One;
    static const dds_topic_descriptor_t& descriptor() { return WireElement<T>::one(); }
};

template <>
struct WireType<SharedImage> : WireType<Image> {
};

template <class E>
struct WireType<SharedVector<E>> {
    using Element = E;
    using Sample = typename WireElement<E>::Many;
    static const dds_topic_descriptor_t& descriptor() { return WireElement<E>::many(); }
};

} // namespace Trovio::Nodes
