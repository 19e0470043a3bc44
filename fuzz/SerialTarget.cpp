// What a serial device sends, through the node's reader of lines into an out-slot of every type, and from there through
// an in-slot back into lines. What the writer made must be read and written again without any difference.
#include "fuzz/Fuzz.h"
#include "nodes/serial/LineDispatcher.h"
#include "nodes/serial/LineReader.h"
#include "nodes/text/TextValue.h"
#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/SlotTypes.h"

namespace Fuzz {

namespace {

using namespace Trovio;
using namespace Trovio::Nodes;

constexpr unsigned capacity = 4096; // no input of the size that is tried fills it

/// "Vec3f Vec3f": a label for each type.
std::vector<ListedSlot> allLabels()
{
    std::vector<ListedSlot> labels;
    forEachSlotType([&labels]<class T>(TypeTag<T>) {
        if constexpr (TextSlotValue<T>)
            labels.push_back({TypeName<T>::getName(), TypeName<T>::getName()});
    });
    return labels;
}

/// What the node does between its device and its device: a line in, a value in a slot, a line out.
class Road {
public:
    Road(const std::vector<ListedSlot>& slots, LineForm form)
        : _form(form), _dispatcher(Clock::system(), slots, form, _counters)
    {
        for (const ListedSlot& slot : slots)
            _senders.push_back(TextSender::create(slot, capacity, [] {}));
        forEachPair([](BasicOutSlot& out, BasicInSlot& in) { out.connect(&in); });
    }
    ~Road()
    {
        forEachPair([](BasicOutSlot& out, BasicInSlot& in) { out.disconnect(&in); });
    }

    void read(std::string_view bytes)
    {
        _reader.restart(false);
        _reader.add(bytes, [this](std::optional<std::string_view> line) { _dispatcher.take(line, Time(1.0)); });
    }

    /// The lines that the node would write for the values that came.
    std::string takeLines()
    {
        std::string lines;
        TextRecord record;
        for (const auto& sender : _senders)
            while (sender->take(record))
                if (const auto line = formatLine(sender->getSlot().getName(), record, _form))
                    lines += *line + "\n";
        return lines;
    }

    bool isBalanced() const
    {
        return _lines.get() == _values.get() + _refused.get() + _unknown.get() + _malformed.get();
    }
    std::uint64_t takeFaultCount()
    {
        const std::uint64_t faults = _refused.get() + _unknown.get() + _malformed.get();
        return faults - std::exchange(_faultsBefore, faults);
    }

private:
    template <class Use>
    void forEachPair(Use use)
    {
        std::size_t next = 0;
        _dispatcher.forEachSlot([&](BasicOutSlot& slot) { use(slot, _senders[next++]->getSlot()); });
    }

    Counter _lines{"lines"}, _values{"values"}, _refused{"refused"}, _unknown{"unknown"}, _malformed{"malformed"};
    LineCounters _counters{_lines, _values, _refused, _unknown, _malformed};
    const LineForm _form;
    LineReader _reader;
    LineDispatcher _dispatcher;
    std::vector<std::unique_ptr<TextSender>> _senders;
    std::uint64_t _faultsBefore = 0;
};

void travel(Road& road, std::string_view input)
{
    road.read(std::string(input) + "\n");
    road.takeFaultCount();
    const std::string lines = road.takeLines();
    road.read(lines);
    require(road.takeFaultCount() == 0, "what the node writes, it reads");
    require(road.takeLines() == lines, "what was written and read is written as before");
}

} // namespace

void runOnce(std::string_view input)
{
    static Road labelled(allLabels(), LineForm::Labelled), numbers({{"values", "Double[]"}}, LineForm::Numbers);
    static Road places({{"a", "Float"}, {"b", "Vec3d"}, {"c", "Long"}}, LineForm::Numbers);
    travel(labelled, input);
    require(labelled.isBalanced(), "every line has one fate");
    travel(numbers, input);
    require(numbers.isBalanced(), "every line of numbers has one fate");
    places.read(input);
    places.takeLines();
}

} // namespace Fuzz
