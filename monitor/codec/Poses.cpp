#include "monitor/codec/Poses.h"

#include "monitor/codec/Encode.h"
#include "monitor/codec/RosTime.h"
#include "trovio/RotationMatrix.h"
#include "trovio/Values.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Monitor {
namespace {

constexpr std::string_view position = "/position", rotation = "/rotation";
static_assert(position.size() == rotation.size());

bool isMatrix(std::string_view type)
{
    return type == "Matrix4f" || type == "Matrix4d";
}

bool isPosition(std::string_view label, std::string_view type)
{
    return label.ends_with(position) && (type == "Vec3f" || type == "Vec3d");
}

bool isRotation(std::string_view label, std::string_view type)
{
    return label.ends_with(rotation) && type == "Rotation";
}

/// The label without its last part.
std::string frameOf(std::string_view label)
{
    return std::string(label.substr(0, label.size() - position.size()));
}

/// The components of a value of type T; none for bytes that are no such message, or where one is no number.
template <class T>
std::optional<std::array<double, Trovio::Components<T>::Count>> read(std::span<const std::byte> message)
{
    T value{};
    std::string problem;
    std::array<double, Trovio::Components<T>::Count> numbers{};
    if (!decode(message, value, problem))
        return std::nullopt;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = Trovio::Components<T>::get(value, i);
    return std::ranges::all_of(numbers, [](double number) { return std::isfinite(number); }) ? std::optional(numbers)
                                                                                             : std::nullopt;
}

std::optional<std::array<double, 4>> unit(std::array<double, 4> q)
{
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    if (!(length > 1e-6))
        return std::nullopt;
    for (double& component : q)
        component /= length;
    return q;
}
} // namespace

std::vector<std::string> Poses::labelsAmong(const std::map<std::string, const SlotCodec*>& slots)
{
    const auto has = [&slots](const std::string& label, auto isSuch) {
        const auto found = slots.find(label);
        return found != slots.end() && isSuch(label, found->second->slotType());
    };
    std::vector<std::string> labels;
    for (const auto& [label, codec] : slots) {
        const std::string_view type = codec->slotType();
        if (isMatrix(type) || (isPosition(label, type) && has(frameOf(label) + std::string(rotation), isRotation)) ||
            (isRotation(label, type) && has(frameOf(label) + std::string(position), isPosition)))
            labels.push_back(label);
    }
    return labels;
}

std::string Poses::note(const std::string& label, const SlotCodec& codec, std::span<const std::byte> message,
                        const Trovio::Time& stamp)
{
    const std::string_view type = codec.slotType();
    if (isPosition(label, type) || isRotation(label, type))
        return notePart(label, message, stamp, isPosition(label, type), type == "Vec3f");
    if (!isMatrix(type))
        return {}; // what stands under that label is another slot by now
    const auto matrix =
        type == "Matrix4f" ? read<Trovio::Matrix4<float>>(message) : read<Trovio::Matrix4<double>>(message);
    return matrix ? noteMatrix(label, *matrix, stamp) : "it holds what is no number";
}

std::string Poses::noteMatrix(const std::string& label, const std::array<double, 16>& m, const Trovio::Time& stamp)
{
    const Trovio::RotationMatrix turn{m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]};
    if (!Trovio::isRotation(turn) || m[12] != 0 || m[13] != 0 || m[14] != 0 || m[15] != 1)
        return "the matrix does more than turn and move";
    make(label, {{m[3], m[7], m[11]}, *unit(Trovio::quaternionOf(turn)), stamp});
    return {};
}

std::string Poses::notePart(const std::string& label, std::span<const std::byte> message, const Trovio::Time& stamp,
                            bool isPosition, bool isFloat)
{
    const std::string frame = frameOf(label);
    Parts& parts = _parts[frame];
    bool& isNew = isPosition ? parts._isPositionNew : parts._isRotationNew;
    if (isNew) // the other one did not come with it
        finish(frame, parts);
    if (isPosition) {
        const auto numbers = isFloat ? read<Trovio::Vec3<float>>(message) : read<Trovio::Vec3<double>>(message);
        if (!numbers)
            return "it holds what is no number";
        parts._position = numbers;
    } else {
        const auto numbers = read<Trovio::Rotation>(message);
        const auto turn = numbers ? unit(*numbers) : std::nullopt;
        if (!turn)
            return "the rotation has no direction";
        parts._rotation = turn;
    }
    isNew = true;
    parts._stamp = stamp;
    if (parts._isPositionNew && parts._isRotationNew)
        finish(frame, parts);
    return {};
}

void Poses::forget(const std::string& label)
{
    const bool isPart = label.ends_with(position) || label.ends_with(rotation);
    for (const std::string& frame : {label, isPart ? frameOf(label) : label}) {
        _parts.erase(frame);
        _newest.erase(frame);
    }
}

void Poses::finish(const std::string& frame, Parts& parts)
{
    if (parts._position && parts._rotation)
        make(frame, {*parts._position, *parts._rotation, parts._stamp});
    parts._isPositionNew = parts._isRotationNew = false;
}

void Poses::make(const std::string& frame, const Pose& pose)
{
    _made.emplace_back(frame, pose);
    _newest[frame] = pose;
}

template <class List>
bool Poses::write(const List& poses, Bytes& message)
{
    if (poses.empty())
        return false;
    CdrWriter out(message);
    out.putCount(poses.size());
    for (const auto& [frame, pose] : poses) {
        putRosHeader(out, pose._stamp, "world");
        out.putText(frame);
        out.putRun<double>(pose._position.data(), pose._position.size());
        out.putRun<double>(pose._rotation.data(), pose._rotation.size());
    }
    return true;
}

bool Poses::take(Bytes& message)
{
    for (auto& [frame, parts] : _parts)
        if (parts._isPositionNew || parts._isRotationNew)
            finish(frame, parts);
    return write(std::exchange(_made, {}), message);
}

bool Poses::takeNewest(Bytes& message) const
{
    return write(_newest, message);
}

} // namespace Monitor
