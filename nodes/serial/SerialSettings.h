#pragma once

#include "nodes/serial/LineForm.h"
#include "nodes/serial/SerialPort.h"
#include "nodes/shared/SlotList.h"

namespace Trovio::Nodes {

/// What a serial node is to do.
struct SerialSettings {
    std::string _path;
    SerialFormat _format;
    LineForm _form = LineForm::Labelled;
    std::vector<ListedSlot> _in, _out;
    unsigned _queue = 1; // records that may wait in each slot of _out
    std::string _lineEnd;
};

std::span<const Setting> serialSettingRows();

/// Throws InvalidFieldException for what the rows cannot say.
SerialSettings readSerialSettings(const Settings& settings);

} // namespace Trovio::Nodes
