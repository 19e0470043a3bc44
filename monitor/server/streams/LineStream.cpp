#include "monitor/server/streams/LineStream.h"

#include "explain/text/JsonText.h"
#include "monitor/server/streams/RecordText.h"

#include <nlohmann/json.hpp>

namespace Monitor {

void LineStream::take(const std::string& label, const SlotCodec& codec, const TapRecord& record)
{
    if (_most != 0 && _taken == _most)
        return;
    const std::string what = _shows == Shows::Size ? "\"bytes\":" + std::to_string(record._cdr.size())
                                                   : "\"value\":" + valueText(codec, record);
    if (add("{\"label\":" + Explain::jsonText(nlohmann::json(label)) + ",\"time\":" + secondsText(record._arrival) +
            ",\"stamp\":" + stampText(record._stamp) + "," + what + "}\n"))
        ++_taken;
}

// A gap is told once there is room again, before what comes next.
void LineStream::endRound()
{
    if (hasDropped() && queue().empty())
        queue().putWords("{\"dropped\":" + std::to_string(newlyDropped()) + "}\n");
    if (!isEmpty())
        queue().putRecords(takeRound());
    if (_most != 0 && _taken == _most && !queue().isFinished()) {
        _watches.removeAll(*this);
        queue().finish();
    }
}
} // namespace Monitor
