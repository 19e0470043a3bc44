#include "monitor/server/streams/LineStream.h"

#include "explain/text/JsonText.h"
#include "monitor/server/streams/RecordText.h"

#include <nlohmann/json.hpp>

namespace Monitor {

// What the client misses is told in its place, before the next record.
void LineStream::take(const std::string& label, const SlotCodec& codec, const TapRecord& record)
{
    if (isEnough())
        return;
    const std::string what = _shows == Shows::Size ? "\"bytes\":" + std::to_string(record._cdr.size())
                                                   : "\"value\":" + valueText(codec, record);
    if (!add(gapText() + "{\"label\":" + Explain::jsonText(nlohmann::json(label)) + ",\"time\":" +
             secondsText(record._arrival) + ",\"stamp\":" + stampText(record._stamp) + "," + what + "}\n"))
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
