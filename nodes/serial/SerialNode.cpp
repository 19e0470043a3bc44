#include "nodes/serial/SerialNode.h"

#include "nodes/shared/Report.h"
#include "nodes/shared/RoundRobin.h"
#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include <array>

namespace Trovio::Nodes {

namespace {

constexpr double retryPeriod = 1.0; // seconds between two tries to open the device
constexpr int maxReadsAtOnce = 64;  // so that the thread comes to other things, too
constexpr std::size_t readSize = 4096;

} // namespace

const NodeTypeEntry& SerialNode::getEntry()
{
    static constexpr auto create = []() -> std::unique_ptr<Node> {
        return std::make_unique<SerialNode>(Clock::system());
    };
    static const NodeTypeEntry entry{"Serial", "a serial device that speaks in lines, read and written",
                                     serialSettingRows(), create};
    return entry;
}

SerialNode::SerialNode(Clock& clock, StablePaths stablePaths)
    : WorkerNode(clock),
      _stablePaths(std::move(stablePaths)),
      _inCounters{addCounter("in lines"), addCounter("in values"), addCounter("in refused"), addCounter("in unknown"),
                  addCounter("in malformed")},
      _outCounters{addCounter("out lines"), addCounter("out failed")},
      _shortage(clock, addCounter("without memory"), "Serial"),
      _failureReports(clock)
{
}

SerialNode::~SerialNode() = default;

void SerialNode::configure(const Settings& settings)
{
    SerialSettings wanted = readSerialSettings(settings);
    auto dispatcher = std::make_unique<LineDispatcher>(_clock, wanted._in, wanted._form, _inCounters);
    std::vector<std::unique_ptr<TextSender>> senders;
    for (const ListedSlot& slot : wanted._out)
        senders.push_back(TextSender::create(slot, wanted._queue, [this] { _worker.wake(); }));

    removeSlots();
    _settings = std::move(wanted);
    _dispatcher = std::move(dispatcher);
    _senders = std::move(senders);
    _dispatcher->forEachSlot([this](BasicOutSlot& slot) { addSlot(slot); });
    for (const auto& sender : _senders)
        addSlot(sender->getSlot());
}

void SerialNode::start()
{
    _nextTry = 0.0;
    _fact.set("'" + _settings._path + "' is not open");
    WorkerNode::start();
}

void SerialNode::stop()
{
    WorkerNode::stop();
    _port.close();
    _unwritten.clear();
}

void SerialNode::run()
{
    for (;;) {
        const bool isDone = _shortage.survives([this] { goOn(); });
        std::optional<double> next;
        if (!isDone)
            next = _clock.now() + MemoryShortage::Pause;
        else if (!_port.isOpen())
            next = _nextTry;
        if (_port.isOpen())
            _ready.watch(_port.getDescriptor(), !_unwritten.empty());
        const int ready = _ready.getDescriptor();
        if (!_worker.wait(next, {&ready, 1U}))
            return;
    }
}

void SerialNode::goOn()
{
    if (!_port.isOpen() && _clock.now() >= _nextTry)
        open();
    if (_port.isOpen())
        receive();
    if (_port.isOpen())
        send();
}

void SerialNode::open()
{
    _nextTry = _clock.now() + retryPeriod;
    std::string problem = _port.open(_settings._path, _settings._format);
    if (!problem.empty()) {
        setProblem(problem + (problem.starts_with("there is no") ? "; " + _stablePaths.describeAll() : ""));
        return;
    }
    _reader.restart(_settings._form == LineForm::Numbers);
    const std::string stable = _stablePaths.find(_settings._path);
    const std::string use = "'" + _settings._path + "' at " + std::to_string(_settings._format._baud) + " baud" +
                            (stable.empty() ? "" : "; its path that stays the same is " + stable);
    _fact.set("has " + use);
    setRunning("uses " + use);
}

void SerialNode::lose()
{
    _port.close();
    _nextTry = _clock.now() + retryPeriod;
    if (!_unwritten.empty())
        _outCounters._failed.add();
    _unwritten.clear();
    setProblem("lost '" + _settings._path + "': " + _port.getProblem());
}

void SerialNode::receive()
{
    std::array<char, readSize> bytes;
    for (int i = 0; i < maxReadsAtOnce; ++i) {
        const auto count = _port.read(bytes);
        if (!count) {
            lose();
            return;
        }
        if (*count == 0)
            return;
        const Time now = _clock.wallTime();
        _reader.add(std::span(bytes).first(*count), [this, &now](std::optional<std::string_view> line) {
            _shortage.survives([&] { _dispatcher->take(line, now); });
        });
    }
    // What is left makes the device ready at once.
}

void SerialNode::send()
{
    const auto sendNext = [this](TextSender& sender) { return flush() && sendOne(sender); };
    const bool mayBeMore = takeInTurn(_senders, sendNext, [this] { return flush() && !_worker.isStopping(); });
    if (mayBeMore && _unwritten.empty())
        _worker.wake();
}

bool SerialNode::sendOne(TextSender& sender)
{
    if (!sender.take(_record))
        return false;
    const auto line = formatLine(sender.getSlot().getName(), _record, _settings._form);
    if (line) {
        _unwritten = *line + _settings._lineEnd;
        flush();
    } else {
        _outCounters._failed.add();
        if (const auto more = _failureReports.admit())
            report(osg::LogWarning, "Serial: a record of " + sender.getSlot().getName() + " makes no line" + *more);
    }
    return true;
}

bool SerialNode::flush()
{
    while (_port.isOpen() && !_unwritten.empty()) {
        const auto count = _port.write(_unwritten);
        if (!count)
            lose();
        else if (*count == 0)
            return false;
        else
            _unwritten.erase(0, *count);
        if (count && _unwritten.empty())
            _outCounters._lines.add();
    }
    return _port.isOpen();
}

void SerialNode::setProblem(const std::string& problem)
{
    _fact.set(problem);
    setDegraded(problem);
}

std::vector<RemarkInfo> SerialNode::getRemarks() const
{
    return _dispatcher ? _dispatcher->getRemarks(_fact.get()) : std::vector<RemarkInfo>();
}

} // namespace Trovio::Nodes
