#pragma once

#include "host/calibrate/RoomFit.h"

#include <string_view>

namespace Host {

/// A place in the room that somebody has measured by hand.
struct KnownPoint {
    std::string _name;
    Point _place;
};

constexpr std::size_t maxPoints = 1000;
constexpr std::size_t maxPointFile = 1u << 20; // bytes

/// Lines of "x, y, z" or "name, x, y, z", in the room's unit; empty lines, those that begin with #, and a first line of
/// headings are passed over. Throws std::runtime_error with "file:line: …", and where the points allow no fit.
std::vector<KnownPoint> parsePoints(std::string_view text, const std::string& file);

/// The same from a file. Throws std::runtime_error.
std::vector<KnownPoint> readPoints(const std::string& path);
} // namespace Host
