#pragma once

#include "nodes/serial/LineForm.h"
#include "nodes/serial/UnknownLabels.h"
#include "nodes/shared/RateLimiter.h"
#include "nodes/text/TextReceiver.h"
#include "trovio/Node.h"

namespace Trovio::Nodes {

/// What became of lines; shown by the node.
struct LineCounters {
    Counter& _lines;     // that came, empty ones left out
    Counter& _values;    // pushed into slots
    Counter& _refused;   // contents that make no value of the slot's type
    Counter& _unknown;   // of labels that no slot has
    Counter& _malformed; // lines that are no text, too long, or not as many numbers as the slots take
};

/// Takes what lines say to the slots that it is for.
/// Threads: one at a time takes; getRemarks() from any, under any lock but the log's.
class LineDispatcher {
public:
    LineDispatcher(Clock& clock, const std::vector<ListedSlot>& slots, LineForm form, LineCounters& counters);

    /// Nothing stands for a line that was too long.
    void take(std::optional<std::string_view> line, const Time& stamp) OSTREL_EXCLUDES(_lock);

    void forEachSlot(const std::function<void(BasicOutSlot&)>& use);

    /// Why a slot has no values, or not all. Where nothing reached a slot, the text begins with what is known of the
    /// device.
    std::vector<RemarkInfo> getRemarks(const std::string& device) const OSTREL_EXCLUDES(_lock);

private:
    void takeLabelled(std::string_view line, const Time& stamp);
    void takeNumbers(std::string_view line, const Time& stamp);
    void deliver(TextReceiver& receiver, const TextContent& content, const Time& stamp);
    void complain(const std::string& problem) OSTREL_EXCLUDES(_lock);
    std::string describeLines() const OSTREL_EXCLUDES(_lock);

    LineCounters& _counters;
    const LineForm _form;
    std::vector<std::unique_ptr<TextReceiver>> _receivers;
    std::map<std::string, TextReceiver*, std::less<>> _byLabel;
    std::size_t _width = 0; // numbers of a line without a label; 0 if it may have any number of them
    UnknownLabels _unknown;
    RateLimiter _malformedReports;
    std::vector<TextNumber> _numbers; // of the line that is being read

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::string _lastProblem OSTREL_GUARDED_BY(_lock); // of a malformed line
};

} // namespace Trovio::Nodes
