#pragma once

#include "host/calibrate/Guide.h"

namespace Host {

/// What comes of a calibration: a table of the residuals, and what is to be done.
struct CalibrationVerdict {
    std::string _table;   // a line for each point, and one for all; empty where there is no fit
    std::string _align;   // to paste; empty where it is refused
    std::string _refusal; // why, with what to do
    std::string _note;    // what the points cannot tell; empty where they tell all
};

/// `limit`: how far a point may be from where it should be, in the room's unit.
CalibrationVerdict judgeCalibration(const std::vector<Guide::Measured>& measured, double limit, bool keepScale);
} // namespace Host
