#pragma once

#include "nodes/filters/Elements.h"
#include "nodes/relay/RotationMatrix.h"
#include "trovio/Settings.h"
#include <string>
#include <vector>

// What Split takes apart and Join puts together: values whose parts have slots of their own.
namespace Trovio::Nodes {

/// The name of component i: x, r, or m12 for the second of the first row.
template <class T>
std::string componentName(std::size_t i)
{
    if constexpr (Matrix<T>)
        return "m" + std::to_string(i / T::order() + 1) + std::to_string(i % T::order() + 1);
    else
        return std::string(1, (isOneOf<T, Color, ColorRGBA> ? "rgba" : "xyzw")[i]);
}

/// Types with more components than one.
template <class T>
concept Composite = Vector<T> || Matrix<T> || isOneOf<T, Rotation, Color, ColorRGBA>;

template <class T>
concept PoseMatrix = isOneOf<T, Matrix4<double>, Matrix4<float>>;

/// The names of the types with parts, as choices of a setting.
std::string compositeTypes();

/// Whether a matrix is a position and a rotation rather than its elements. Throws InvalidFieldException where a type
/// that has none is to have them.
bool readAsPose(const Settings& settings);
Setting partsSetting();

/// A matrix that turns, and moves by its last column.
template <PoseMatrix M>
struct Pose {
    using Position = Vec3<typename Components<M>::Component>;
    Position _position;
    Quaternion _rotation; // of length 1

    M toMatrix() const
    {
        const RotationMatrix turn = Nodes::toMatrix(_rotation);
        M matrix;
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j)
                setNumber(matrix, i * 4 + j, turn[i * 3 + j]);
            matrix[i * 4 + 3] = _position[i];
        }
        return matrix;
    }
};

/// False where the matrix does more than turn and move; it is made of finite numbers.
template <PoseMatrix M>
bool readPose(const M& matrix, Pose<M>& pose)
{
    RotationMatrix turn;
    for (std::size_t i = 0; i < turn.size(); ++i)
        turn[i] = matrix[i / 3 * 4 + i % 3];
    if (!isRotation(turn) || matrix[12] != 0 || matrix[13] != 0 || matrix[14] != 0 || matrix[15] != 1)
        return false;
    pose = {{matrix[3], matrix[7], matrix[11]}, toQuaternion(turn)};
    return true;
}

} // namespace Trovio::Nodes
