#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace Host {

using Point = std::array<double, 3>;

/// How measured points lie in the room: wanted = scale * rotation * measured + translation.
struct RoomFit {
    std::array<double, 4> _rotation; // quaternion x, y, z, w of length 1
    Point _translation;              // in the room's unit
    double _scale;
    std::vector<double> _residuals; // how far each point is from where it should be, in the room's unit

    double largest() const;
    double rms() const;
    /// "Align rotation='…' translation='…' scale=…", as it stands in a scene.
    std::string alignText() const;
};

/// Why no rotation follows from points that lie like these: too few, all at one place, or on a line. Empty if one does.
std::string whyNoFit(const std::vector<Point>& points);

/// Whether the points lie in a plane, or nearly so: then they fit in a mirror, too, and do not show of which hand a
/// device's axes are. They allow a fit.
bool lieInPlane(const std::vector<Point>& points);

/// The fit with the least sum of squared residuals. Both lists have the same length, and points that allow a fit.
/// keepScale: lengths are right as they are.
RoomFit fitRoom(const std::vector<Point>& measured, const std::vector<Point>& wanted, bool keepScale);

/// The points as a mirror shows them, as where a device's axes are of the other hand.
std::vector<Point> mirrored(std::vector<Point> points);
} // namespace Host
