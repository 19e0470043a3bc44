#pragma once

#include "nodes/dds/wire/RosImage.h"
#include "nodes/dds/wire/RosPose.h"
#include "nodes/dds/wire/RosTime.h"
#include "nodes/dds/wire/RosTypes.h"
#include "nodes/dds/wire/TopicTypes.h"
#include "nodes/dds/wire/WireValue.h"

// How slot values become messages of ROS 2 and are read back, as WireValue does for samples of our own.
namespace Trovio::Nodes {

/// Numbers that have the same layout in the message as in memory.
template <class T>
class RosContent {
public:
    template <class Sample>
    std::string refer(const T& value, Sample& sample)
    {
        return WireKind<T>().referOne(value, sample);
    }
    template <class Sample>
    static std::string read(const Sample& sample, bool finite, T& value)
    {
        return WireKind<T>::readOne(sample, finite, value);
    }
};

template <>
class RosContent<bool> {
public:
    std::string refer(bool value, std_msgs_msg_dds__Bool_& sample)
    {
        return WireKind<bool>().referOne(value, sample.data);
    }
    static std::string read(const std_msgs_msg_dds__Bool_& sample, bool finite, bool& value)
    {
        return WireKind<bool>::readOne(sample.data, finite, value);
    }
};

template <>
class RosContent<Rotation> {
public:
    std::string refer(const Rotation& value, geometry_msgs_msg_dds__Quaternion_& sample)
    {
        sample = {value[0], value[1], value[2], value[3]};
        return {};
    }
    static std::string read(const geometry_msgs_msg_dds__Quaternion_& sample, bool finite, Rotation& value)
    {
        const Rotation narrow(static_cast<float>(sample.x), static_cast<float>(sample.y), static_cast<float>(sample.z),
                              static_cast<float>(sample.w));
        return WireKind<Rotation>::readOne(narrow, finite, value);
    }
};

template <class C>
class RosContent<Matrix4<C>> {
public:
    std::string refer(const Matrix4<C>& value, geometry_msgs_msg_dds__Pose_& sample)
    {
        PoseMatrix matrix{};
        std::copy_n(value.data(), matrix.size(), matrix.begin());
        return writePose(matrix, sample);
    }
    static std::string read(const geometry_msgs_msg_dds__Pose_& sample, bool finite, Matrix4<C>& value)
    {
        PoseMatrix matrix{};
        if (std::string problem = readPose(sample, matrix); !problem.empty())
            return problem;
        Matrix4<C> narrow;
        std::transform(matrix.begin(), matrix.end(), narrow.data(),
                       [](double number) { return static_cast<C>(number); });
        return WireKind<Matrix4<C>>::readOne(narrow, finite, value);
    }
};

template <>
class RosContent<Time> {
public:
    std::string refer(const Time& value, RosTime& sample) { return writeTime(value.getSeconds(), sample); }
    static std::string read(const RosTime& sample, bool, Time& value)
    {
        value = Time(readTime(sample));
        if (std::isnan(value.getSeconds()))
            return "a time with " + std::to_string(sample.nanosec) + " nanoseconds; allowed is less than a second";
        return {};
    }
};

/// A text without zeros inside.
template <>
class RosContent<std::string> {
public:
    std::string refer(const std::string& value, std_msgs_msg_dds__String_& sample)
    {
        if (value.size() > MaxWireText || value.find('\0') != std::string::npos)
            return "a text of " + std::to_string(value.size()) + " bytes; allowed are " + std::to_string(MaxWireText) +
                   ", and no zero among them";
        sample.data = const_cast<char*>(value.c_str()); // the writer only reads
        return {};
    }
    static std::string read(const std_msgs_msg_dds__String_& sample, bool, std::string& value)
    {
        const std::string_view text = sample.data ? sample.data : "";
        if (text.size() > MaxWireText)
            return "a text of " + std::to_string(text.size()) + " bytes; at most " + std::to_string(MaxWireText) +
                   " are allowed";
        value = text;
        return {};
    }
};

template <>
class RosContent<SharedImage> {
public:
    std::string refer(const SharedImage& value, sensor_msgs_msg_dds__Image_& sample)
    {
        static const Image none;
        return referImage(value ? *value : none, sample);
    }
    static std::string read(const sensor_msgs_msg_dds__Image_& sample, bool, SharedImage& value)
    {
        return readImage(sample, *value);
    }
};

/// Numbers in one row, whose layout is not told; whatever layout a message tells is left out.
template <class E>
class RosContent<SharedVector<E>> {
public:
    template <class Sample>
    std::string refer(const SharedVector<E>& value, Sample& sample)
    {
        static const std::vector<E> none;
        return WireKind<E>().referMany(value ? *value : none, sample.data);
    }
    template <class Sample>
    static std::string read(const Sample& sample, bool finite, SharedVector<E>& value)
    {
        const std::uint32_t offset = sample.layout.data_offset;
        if (offset > sample.data._length)
            return "numbers from place " + std::to_string(offset) + " on, but " + std::to_string(sample.data._length) +
                   " of them";
        auto numbers = sample.data;
        numbers._buffer += offset;
        numbers._length -= offset;
        return WireKind<E>::readMany(numbers, finite, *value);
    }
};

template <class T>
class RosValue : public RosContent<T> {
public:
    using Sample = typename RosType<T>::Sample;
    static const dds_topic_descriptor_t& descriptor() { return RosType<T>::descriptor(); }
};

/// Calls visit(TypeTag<T>(), TypeTag<Value>()) for the slot value type of that name and how it travels in that format.
template <class Visit>
void withFormat(const std::string& slotType, const DdsFormat& format, const Visit& visit)
{
    if (!format._isRos)
        withSlotType(slotType, [&]<class T>(TypeTag<T> type) { visit(type, TypeTag<WireValue<T>>()); });
    else
        forEachRosType([&]<class T>(TypeTag<T> type) {
            if (TypeName<T>::getName() == slotType)
                visit(type, TypeTag<RosValue<T>>());
        });
}

} // namespace Trovio::Nodes
