#include "host/calibrate/RoomFit.h"

#include <Eigen/Eigenvalues>
#include <Eigen/Geometry>
#include <Eigen/SVD>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace Host {

namespace {

using Columns = Eigen::Matrix3Xd;

constexpr double narrowest = 0.05; // how wide points must lie across a line or a plane, by their extent along it

Columns columns(const std::vector<Point>& points)
{
    Columns all(3, static_cast<Eigen::Index>(points.size()));
    for (Eigen::Index i = 0; i < all.cols(); ++i)
        all.col(i) = Eigen::Map<const Eigen::Vector3d>(points[static_cast<std::size_t>(i)].data());
    return all;
}

/// How far points extend along the three directions that they have, the farthest first.
Eigen::Vector3d extentsOf(const std::vector<Point>& points)
{
    Columns all = columns(points);
    all.colwise() -= all.rowwise().mean().eval();
    const Eigen::Matrix3d spread = all * all.transpose();
    const auto squares = Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d>(spread, Eigen::EigenvaluesOnly).eigenvalues();
    return squares.reverse().cwiseMax(0.0).cwiseSqrt();
}

// With all digits that a float has: Align sends no more.
std::string numberText(double number)
{
    constexpr double nothing = 1e-9; // what rounding leaves of a zero
    std::array<char, 32> text{};
    const double shown = std::abs(number) < nothing ? 0.0 : number;
    const auto end = std::to_chars(text.begin(), text.end(), shown, std::chars_format::general, 9).ptr;
    return {text.begin(), end};
}

template <std::size_t N>
std::string listText(const std::array<double, N>& numbers)
{
    std::string text;
    for (const double number : numbers)
        text += (text.empty() ? "" : " ") + numberText(number);
    return text;
}
} // namespace

double RoomFit::largest() const
{
    return *std::ranges::max_element(_residuals);
}

double RoomFit::rms() const
{
    double sum = 0;
    for (const double residual : _residuals)
        sum += residual * residual;
    return std::sqrt(sum / static_cast<double>(_residuals.size()));
}

std::string RoomFit::alignText() const
{
    return "Align rotation='" + listText(_rotation) + "' translation='" + listText(_translation) +
           "' scale=" + numberText(_scale);
}

std::string whyNoFit(const std::vector<Point>& points)
{
    if (points.size() < 3)
        return "there are " + std::to_string(points.size()) + "; a room has its place by three at least";
    const Eigen::Vector3d extents = extentsOf(points);
    // What rounding leaves of points that are all at one place.
    if (extents[0] <= 1e-9 * (1.0 + columns(points).cwiseAbs().maxCoeff()))
        return "they are all at one place";
    if (extents[1] < narrowest * extents[0])
        return "they lie on a line, about which the room could still turn; move one of them away from it";
    return {};
}

bool lieInPlane(const std::vector<Point>& points)
{
    const Eigen::Vector3d extents = extentsOf(points);
    return extents[2] < narrowest * extents[0];
}

RoomFit fitRoom(const std::vector<Point>& measured, const std::vector<Point>& wanted, bool keepScale)
{
    const Columns from = columns(measured), to = columns(wanted);
    const Eigen::Matrix4d best = Eigen::umeyama(from, to, !keepScale);
    const Eigen::Matrix3d turn = best.topLeftCorner<3, 3>();
    RoomFit fit{};
    fit._scale = std::cbrt(turn.determinant());
    const Eigen::Quaterniond rotation(Eigen::Matrix3d(turn / fit._scale));
    const Eigen::Vector4d parts = rotation.normalized().coeffs(); // x, y, z, w
    std::copy_n(parts.data(), fit._rotation.size(), fit._rotation.begin());
    const Eigen::Vector3d translation = best.topRightCorner<3, 1>();
    std::copy_n(translation.data(), fit._translation.size(), fit._translation.begin());
    const Eigen::RowVectorXd off = (((turn * from).colwise() + translation) - to).colwise().norm();
    fit._residuals.assign(off.begin(), off.end());
    return fit;
}

std::vector<Point> mirrored(std::vector<Point> points)
{
    for (Point& point : points)
        point[2] = -point[2];
    return points;
}
} // namespace Host
