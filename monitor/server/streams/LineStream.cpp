#include "monitor/server/streams/LineStream.h"

#include "explain/text/JsonText.h"
#include "monitor/server/streams/RecordText.h"

#include <nlohmann/json.hpp>

namespace Monitor {

// What the client misses is told in its place, before the next record.
void LineStream::take(const SeenRecord& seen)
{
    if (isEnough())
        return;
    std::string line = gapText() + "{\"label\":" + Explain::jsonText(nlohmann::json(seen._label)) + ",\"time\":";
    appendSeconds(line, seen._record._arrival);
    line += ",\"stamp\":";
    appendStamp(line, seen._record._stamp);
    if (_shows == Shows::Size) {
        line += ",\"bytes\":" + std::to_string(seen._record._cdr.size());
    } else {
        line += ",\"value\":";
        appendValue(line, seen._codec, seen._record);
    }
    if (!add(line + "}\n"))
        return;
    tell();
    ++_taken;
}

std::string LineStream::gapText() const
{
    return untold() > 0 ? "{\"dropped\":" + std::to_string(untold()) + "}\n" : std::string();
}

void LineStream::endRound()
{
    if (!isEmpty())
        queue().putRecords(takeRound());
    if (untold() > 0 && (queue().empty() || isEnough()) && queue().putWords(gapText()))
        tell();
    if (isEnough() && !queue().isFinished()) {
        _watches.removeAll(*this);
        queue().finish();
    }
}
} // namespace Monitor
