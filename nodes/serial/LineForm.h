#pragma once

#include "nodes/text/TextNumber.h"
#include "nodes/text/TextSender.h"
#include <vector>

namespace Trovio::Nodes {

/// What a line of a serial device looks like.
enum class LineForm {
    Labelled, // "accel 0.1 0.2 9.8"
    Numbers,  // "21.5 0.1 0.2 9.8"
};

/// A label and what follows it. The parts live as long as the line.
struct LabelledLine {
    std::string_view _label;
    std::string_view _content;
};

/// A label ends at a blank, or at one of : = , ; which belongs to neither.
LabelledLine splitLabel(std::string_view line);

/// What may be a label in the settings: it can be told from what follows it.
bool isLineLabel(std::string_view text);

/// The line for a record, without its end; nothing for a record that no line can carry: a text with a line end
/// in it, or an empty array without a label.
std::optional<std::string> formatLine(std::string_view label, const TextRecord& record, LineForm form);

} // namespace Trovio::Nodes
