#include "host/Escape.h"
#include "host/Json.h"
#include "host/LiveTable.h"
#include "host/RunLog.h"
#include "host/View.h"

#include <algorithm>
#include <ostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Host {
namespace {

constexpr double drawInterval = 0.25, writeInterval = 1, rateInterval = 1; // seconds
constexpr std::size_t longestValue = 200;

struct Size {
    std::size_t _width, _height;
};

Size terminalSize()
{
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
        return {80, 24};
    return {size.ws_col, size.ws_row};
}

class TableView final : public View {
public:
    TableView(std::ostream& out, bool onTerminal, RunLog* log, std::vector<SensorWatch*> watches,
              std::function<bool()> isTaken)
        : _out(out),
          _isTaken(std::move(isTaken)),
          _onTerminal(onTerminal),
          _log(log),
          _watches(std::move(watches)),
          _counted(_watches.size())
    {
        if (_log != nullptr)
            _log->hold(true);
    }
    ~TableView() override
    {
        if (_log != nullptr)
            _log->hold(false);
    }
    TableView(const TableView&) = delete;
    TableView& operator=(const TableView&) = delete;

    void frame(double now) override
    {
        if (now >= _lastDraw && now - _lastDraw < (_onTerminal ? drawInterval : writeInterval))
            return;
        if (!_isTaken())
            return;
        _lastDraw = now;
        countRates(now);
        draw(now);
    }

    void clockStepped(double seconds) override
    {
        _lastDraw += seconds;
        _lastRate += seconds;
    }

private:
    struct Counted {
        std::uint64_t _changes = 0;
        double _perSecond = 0;
    };

    void countRates(double now);
    void draw(double now);
    TableRow row(std::size_t i, double now) const;

    std::ostream& _out;
    const std::function<bool()> _isTaken;
    const bool _onTerminal;
    RunLog* const _log; // null where the log is not shown on this terminal
    const std::vector<SensorWatch*> _watches;
    std::vector<Counted> _counted;       // one per watch, as of _lastRate
    double _lastDraw = 0, _lastRate = 0; // wall-clock seconds, 0 before the first
    std::size_t _drawnLines = 0;
};

void TableView::countRates(double now)
{
    const double passed = now - _lastRate;
    if (passed >= 0 && passed < rateInterval)
        return;
    for (std::size_t i = 0; i < _watches.size(); ++i) {
        const auto newer = static_cast<double>(_watches[i]->changes() - _counted[i]._changes);
        _counted[i] = {_watches[i]->changes(), _lastRate == 0 || passed < 0 ? 0 : newer / passed};
    }
    _lastRate = now;
}

TableRow TableView::row(std::size_t i, double now) const
{
    const SensorWatch& watch = *_watches[i];
    return {escaped(watch.title()), watch.field().getTypeName(), valueText(watch.field(), Digits::Few, longestValue),
            _counted[i]._perSecond, watch.age(now)};
}

void TableView::draw(double now)
{
    const Size size = _onTerminal ? terminalSize() : Size{120, _watches.size() + 2};
    // Of what does not fit only the number counts, so no text is made for it.
    std::vector<TableRow> rows(_watches.size());
    for (std::size_t i = 0; i < std::min(_watches.size(), size._height); ++i)
        rows[i] = row(i, now);
    // One line is left free for the cursor.
    const std::string table = renderTable(rows, size._width, _onTerminal ? size._height - 1 : size._height);
    std::string text;
    if (_onTerminal && _drawnLines > 0)
        text = "\x1b[" + std::to_string(_drawnLines) + "A\r\x1b[J";
    if (_log != nullptr)
        text += _log->take();
    _out << text + table << std::flush;
    _drawnLines = static_cast<std::size_t>(std::ranges::count(table, '\n'));
}
} // namespace

std::unique_ptr<View> makeTableView(std::ostream& out, bool onTerminal, RunLog* log, std::vector<SensorWatch*> watches,
                                    std::function<bool()> isTaken)
{
    return std::make_unique<TableView>(out, onTerminal, log, std::move(watches), std::move(isTaken));
}
} // namespace Host
