#include "nodes/serial/LineDispatcher.h"

#include "nodes/serial/LineReader.h"
#include "nodes/shared/Report.h"
#include "trovio/BasicOutSlot.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

std::vector<std::string> labelsOf(const std::vector<ListedSlot>& slots)
{
    std::vector<std::string> labels;
    labels.reserve(slots.size());
    for (const ListedSlot& slot : slots)
        labels.push_back(slot._name);
    return labels;
}

/// Control characters, which a wrong baud rate makes of everything.
bool isText(std::string_view line)
{
    return std::ranges::none_of(line, [](char byte) {
        const auto code = static_cast<unsigned char>(byte);
        return (code < 0x20 && byte != '\t') || code == 0x7F;
    });
}

std::string countLines(std::uint64_t count)
{
    return (count == 0 ? "no" : std::to_string(count)) + (count == 1 ? " line" : " lines");
}

} // namespace

LineDispatcher::LineDispatcher(Clock& clock, const std::vector<ListedSlot>& slots, LineForm form,
                               LineCounters& counters)
    : _counters(counters), _form(form), _unknown(labelsOf(slots)), _malformedReports(clock)
{
    for (const ListedSlot& slot : slots) {
        _receivers.push_back(TextReceiver::create("Serial", slot));
        _byLabel.emplace(slot._name, _receivers.back().get());
        _width += _receivers.back()->getWidth();
    }
}

void LineDispatcher::take(std::optional<std::string_view> line, const Time& stamp)
{
    _counters._lines.add();
    if (!line)
        complain("longer than " + std::to_string(LineReader::MaxLine) + " bytes");
    else if (!isText(*line))
        complain("bytes that are no text; does 'baud' fit the device?");
    else if (_form == LineForm::Labelled)
        takeLabelled(*line, stamp);
    else
        takeNumbers(*line, stamp);
}

void LineDispatcher::takeLabelled(std::string_view line, const Time& stamp)
{
    const auto [label, content] = splitLabel(line);
    const auto found = _byLabel.find(label);
    if (found == _byLabel.end()) {
        _counters._unknown.add();
        _unknown.note(label, content);
        return;
    }
    _numbers.clear();
    const bool hasNumbers = readTextNumbers(content, _numbers);
    deliver(*found->second, {content, hasNumbers ? std::optional(std::span<const TextNumber>(_numbers)) : std::nullopt},
            stamp);
}

void LineDispatcher::takeNumbers(std::string_view line, const Time& stamp)
{
    _numbers.clear();
    if (!readTextNumbers(line, _numbers) || _numbers.empty() || (_width != 0 && _numbers.size() != _width)) {
        complain("'" + shortenText(line) + "' instead of " + (_width == 0 ? "" : std::to_string(_width) + " ") +
                 "numbers");
        return;
    }
    std::span<const TextNumber> rest(_numbers);
    for (const auto& receiver : _receivers) {
        const std::size_t count = _width == 0 ? rest.size() : receiver->getWidth();
        deliver(*receiver, {line, rest.first(count)}, stamp);
        rest = rest.subspan(count);
    }
}

void LineDispatcher::deliver(TextReceiver& receiver, const TextContent& content, const Time& stamp)
{
    (receiver.deliver(content, stamp) ? _counters._values : _counters._refused).add();
}

void LineDispatcher::complain(const std::string& problem)
{
    _counters._malformed.add();
    {
        const Ostrel::LockGuard guard(_lock);
        _lastProblem = problem;
    }
    if (const auto more = _malformedReports.admit())
        report(osg::LogWarning, "Serial: malformed line: " + problem + *more);
}

void LineDispatcher::forEachSlot(const std::function<void(BasicOutSlot&)>& use)
{
    for (const auto& receiver : _receivers)
        use(receiver->getSlot());
}

std::string LineDispatcher::describeLines() const
{
    const std::uint64_t malformed = _counters._malformed.get();
    const Ostrel::LockGuard guard(_lock);
    return countLines(_counters._lines.get()) + " came" +
           (malformed == 0 ? "" : ", " + countLines(malformed) + " malformed, the last: " + _lastProblem);
}

std::vector<RemarkInfo> LineDispatcher::getRemarks(const std::string& device) const
{
    std::vector<RemarkInfo> remarks;
    for (const auto& receiver : _receivers) {
        const std::string& label = receiver->getSlot().getName();
        const std::string refused = receiver->describeRefused();
        const bool isMissing = _form == LineForm::Labelled && _counters._lines.get() != 0;
        if (receiver->getSlot().getActivity()._written != 0) {
            if (!refused.empty())
                remarks.push_back({label, refused});
        } else if (!refused.empty()) {
            remarks.push_back({label, device + "; " + refused});
        } else {
            remarks.push_back({label, device + "; " + describeLines() +
                                          (isMissing ? ", none for " + label + _unknown.describe() : "")});
        }
    }
    return remarks;
}

} // namespace Trovio::Nodes
