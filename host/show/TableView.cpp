#include "explain/text/DisplayWidth.h"
#include "explain/text/Escape.h"
#include "explain/text/TextWrap.h"
#include "host/output/RunLog.h"
#include "host/show/DrawnLines.h"
#include "host/show/LiveTable.h"
#include "host/show/TableControl.h"
#include "host/show/Terminal.h"
#include "host/show/View.h"

#include <algorithm>
#include <ostream>
#include <unistd.h>

namespace Host {

using namespace Explain;

namespace {

constexpr double drawInterval = 0.25, writeInterval = 1, rateInterval = 1, keyInterval = 0.05; // seconds
constexpr std::size_t maxValue = 1000, widthElsewhere = 120;

// Whether `interval` has passed since `last`, which is set to now then; also where the clock was set back.
bool isDue(double& last, double now, double interval)
{
    if (now >= last && now - last < interval)
        return false;
    last = now;
    return true;
}

void trimRight(std::string& line)
{
    line.resize(line.find_last_not_of(' ') + 1);
}

class TableView final : public View {
public:
    TableView(std::ostream& out, TableScreen screen, std::unique_ptr<TableSensors> sensors, SensorFilter filter);
    ~TableView() override
    {
        if (_screen._log != nullptr)
            _screen._log->hold(false);
    }
    TableView(const TableView&) = delete;
    TableView& operator=(const TableView&) = delete;

    void frame(double now) override;

    void clockStepped(double seconds) override
    {
        for (double* last : {&_lastDraw, &_lastRate, &_lastKeys})
            *last += seconds;
    }

    void sensorsChanged(const Scenes::Session& session) override
    {
        _sensors = watchedSensors(session.watches());
        takeSensors();
    }

    void refresh() override { _lastDraw = 0; }
    void press(const KeyPress& press) override { _control.press(press); }
    bool isTyping() const override { return _control.isEditing(); }
    void terminalIsBack() override { _drawn = {}; } // others have written below it

private:
    struct Counted {
        std::uint64_t _changes = 0;
        double _perSecond = 0;
    };

    void takeSensors();
    bool readKeys();
    void countRates(double now);
    void select(double now);
    void draw(double now);
    std::string table(const TerminalSize& size, double now);
    std::string statusLine() const;
    TablePage page(std::size_t first, std::size_t room, double now);

    std::ostream& _out;
    const TableScreen _screen;
    std::unique_ptr<TableSensors> _sensors;
    std::vector<TableSensors::Names> _names; // one per sensor, as the next
    std::vector<std::string> _titles;        // as they are shown
    TableControl _control;
    KeyPresses _keys;
    std::size_t _nameWidth = 0, _typeWidth = 0;
    TableLayout _layout{0, 0, 0};
    std::size_t _width = 0;                             // of _layout
    std::vector<Counted> _counted;                      // one per sensor, as of _lastRate
    std::vector<bool> _below;                           // per sensor, whether its value has lines of its own
    std::vector<std::size_t> _selected;                 // sensors, in the order of the table
    double _lastDraw = 0, _lastRate = 0, _lastKeys = 0; // wall-clock seconds, 0 before the first
    DrawnLines _drawn;                                  // the table on the screen
};

TableView::TableView(std::ostream& out, TableScreen screen, std::unique_ptr<TableSensors> sensors, SensorFilter filter)
    : _out(out), _screen(std::move(screen)), _sensors(std::move(sensors)), _control(std::move(filter))
{
    takeSensors();
    if (_screen._log != nullptr)
        _screen._log->hold(true);
}

// What was counted and measured of others begins anew.
void TableView::takeSensors()
{
    _names = _sensors->names();
    _counted.assign(_names.size(), {});
    _below.assign(_names.size(), false);
    _titles.clear();
    _width = 0;
    _lastRate = 0;
    _nameWidth = displayWidth("sensor");
    _typeWidth = displayWidth("type");
    for (const TableSensors::Names& names : _names) {
        _titles.push_back(escaped(names._title));
        _nameWidth = std::max(_nameWidth, displayWidth(_titles.back()));
        _typeWidth = std::max(_typeWidth, displayWidth(names._type));
    }
}

void TableView::frame(double now)
{
    if (isDue(_lastKeys, now, keyInterval) && readKeys())
        _lastDraw = 0;
    if (_screen._isTaken && !_screen._isTaken())
        return;
    if (!isDue(_lastDraw, now, _screen._inPlace ? drawInterval : writeInterval))
        return;
    countRates(now);
    if (!_screen._inPlace || isInFront(STDOUT_FILENO))
        draw(now);
}

bool TableView::readKeys()
{
    if (_screen._keyboard == nullptr)
        return false;
    const std::vector<KeyPress> presses = _keys.read(_screen._keyboard->read());
    if (_screen._keyboard->isBack())
        terminalIsBack();
    for (const KeyPress& press : presses)
        _control.press(press);
    return !presses.empty();
}

void TableView::countRates(double now)
{
    const double passed = now - _lastRate;
    const bool isFirst = _lastRate == 0;
    if (!isDue(_lastRate, now, rateInterval))
        return;
    for (std::size_t i = 0; i < _counted.size(); ++i) {
        const std::uint64_t changes = _sensors->changes(i);
        const auto newer = static_cast<double>(changes - _counted[i]._changes);
        _counted[i] = {changes, isFirst || passed < 0 ? 0 : newer / passed};
    }
}

// The rows, from the scene's order and the filter; what has no value yet comes last.
void TableView::select(double now)
{
    _selected.clear();
    for (std::size_t i = 0; i < _names.size(); ++i)
        if (_control.filter().passes(_titles[i], _names[i]._label))
            _selected.push_back(i);
    const auto newness = [&](std::size_t i) {
        const double age = _sensors->age(i, now);
        return age < 0 ? std::numeric_limits<double>::infinity() : age;
    };
    switch (_control.order()) {
    case TableControl::Order::Scene:
        return;
    case TableControl::Order::Name:
        std::ranges::stable_sort(_selected, {}, [&](std::size_t i) -> const std::string& { return _titles[i]; });
        return;
    case TableControl::Order::Rate:
        std::ranges::stable_sort(_selected, std::greater(), [&](std::size_t i) { return _counted[i]._perSecond; });
        return;
    case TableControl::Order::Age:
        std::ranges::stable_sort(_selected, {}, newness);
    }
}

TablePage TableView::page(std::size_t first, std::size_t room, double now)
{
    return tablePage(_selected.size(), first, room, [&](std::size_t row) {
        const std::size_t i = _selected[row];
        const TableRow text{_titles[i], _names[i]._type, _sensors->value(i, maxValue), _counted[i]._perSecond,
                            _sensors->age(i, now)};
        // It stays there, so that the rows below do not jump with each value.
        _below[i] = _below[i] || !_layout.fits(text);
        return _layout.lines(text, _below[i]);
    });
}

std::string TableView::table(const TerminalSize& size, double now)
{
    if (size._width != _width) {
        _width = size._width;
        _layout = TableLayout(_width, _nameWidth, _typeWidth);
        _below.assign(_names.size(), false);
    }
    select(now);
    const std::size_t room = size._height > 0 ? size._height - 1 : 0; // below the heading
    const std::size_t first = _control.first();
    TablePage rows = page(first, room, now);
    _control.shown(rows._first, rows._count);
    if (_screen._inPlace && room > 1 && (_screen._status || _control.hasStatus(_selected.size()))) {
        rows = page(first, room - 1, now);
        _control.shown(rows._first, rows._count);
        rows._lines.push_back(fitted(statusLine(), _width));
    }
    std::string text;
    _drawn = {};
    rows._lines.insert(rows._lines.begin(), _layout.heading());
    for (std::string& line : rows._lines) {
        trimRight(line);
        text += _drawn.add(line);
    }
    return text;
}

std::string TableView::statusLine() const
{
    std::string line = _screen._status ? _screen._status() : "";
    if (_control.hasStatus(_selected.size()))
        line += (line.empty() ? "" : "  ") + _control.status(_selected.size(), _screen._keyboard != nullptr);
    return line;
}

void TableView::draw(double now)
{
    TerminalSize size = terminalSize(STDOUT_FILENO).value_or(TerminalSize{widthElsewhere, 24});
    std::string text;
    if (_screen._inPlace) {
        text = _drawn.erase(size._width);
        --size._height; // one line is left free for the cursor
    } else {
        size._height = std::numeric_limits<std::size_t>::max();
    }
    if (_screen._log != nullptr)
        text += _screen._log->take();
    _out << text + table(size, now) << std::flush; // at once, so that nothing comes in between
}
} // namespace

std::unique_ptr<View> makeTableView(std::ostream& out, TableScreen screen, std::unique_ptr<TableSensors> sensors,
                                    SensorFilter filter)
{
    return std::make_unique<TableView>(out, std::move(screen), std::move(sensors), std::move(filter));
}
} // namespace Host
