#include "host/calibrate/Verdict.h"

#include "explain/text/Escape.h"

#include <algorithm>
#include <cstdio>

namespace Host {

using namespace Explain;

namespace {

constexpr double smallestScale = 1e-9, largestScale = 1e9; // of Align

std::string residualText(double residual)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.4f", residual);
    return text.data();
}

std::string scaleText(double scale)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", scale);
    return text.data();
}

std::string row(const std::string& name, const std::string& place, const std::string& residual)
{
    const auto padded = [](const std::string& text, std::size_t width) {
        return text + std::string(std::max<std::size_t>(text.size() + 2, width) - text.size(), ' ');
    };
    return padded(name, 20) + padded(place, 32) + residual + "\n";
}

std::string tableOf(const std::vector<Guide::Measured>& measured, const RoomFit& fit)
{
    std::string table = row("point", "where it should be", "off by");
    for (std::size_t i = 0; i < measured.size(); ++i)
        table += row(escaped(measured[i]._point._name), pointText(measured[i]._point._place),
                     residualText(fit._residuals[i]));
    return table + row("root mean square", "", residualText(fit.rms()));
}

std::string whyTooFar(const std::vector<Guide::Measured>& measured, const RoomFit& fit, const RoomFit& mirror,
                      double limit)
{
    const auto worst = std::ranges::max_element(fit._residuals) - fit._residuals.begin();
    std::string why = inQuotes(measured[static_cast<std::size_t>(worst)]._point._name) + " is off by " +
                      residualText(fit.largest()) + "; allowed: up to " + residualText(limit) + " (--limit); ";
    if (mirror.largest() <= limit)
        return why + "in a mirror all points fit, so the device's axes are of the other hand: put \"Axes axes=xyZ\" on "
                     "the route and calibrate again";
    return why + "measure it again, and see whether the file has the points in the order in which they were measured";
}
} // namespace

CalibrationVerdict judgeCalibration(const std::vector<Guide::Measured>& measured, double limit, bool keepScale)
{
    std::vector<Point> values, places;
    for (const Guide::Measured& one : measured) {
        values.push_back(one._value);
        places.push_back(one._point._place);
    }
    for (const auto& [points, whose] :
         {std::pair(places, "the points that were measured"), std::pair(values, "the values that were measured")})
        if (const std::string why = whyNoFit(points); !why.empty())
            return {{}, {}, "no rotation follows from " + std::string(whose) + ": " + why, {}};
    const RoomFit fit = fitRoom(values, places, keepScale);
    if (!(fit._scale >= smallestScale && fit._scale <= largestScale))
        return {{},
                {},
                "the scale that fits best is " + scaleText(fit._scale) +
                    "; allowed: 1e-9 to 1e9; the values do not move with the points: see whether the file has these in "
                    "the order in which they were measured",
                {}};
    CalibrationVerdict verdict{tableOf(measured, fit), fit.alignText(), {}, {}};
    if (lieInPlane(places))
        verdict._note = "all points lie in a plane, so a device whose axes are of the other hand would fit as well; a "
                        "point off the plane would tell";
    if (fit.largest() > limit)
        verdict = {verdict._table,
                   {},
                   whyTooFar(measured, fit, fitRoom(mirrored(values), places, keepScale), limit),
                   verdict._note};
    return verdict;
}
} // namespace Host
