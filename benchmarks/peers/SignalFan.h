#pragma once

#include "benchmarks/harness/Fan.h"
#include <boost/signals2/signal.hpp>
#include <mutex>

namespace Bench {

/// Signals2 into values that a mutex guards. Nobody can wait for them.
class SignalFan {
public:
    explicit SignalFan(std::size_t readers)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _signal.connect([cell = _cells.emplace_back(std::make_unique<Cell>()).get()](const Record& record) {
                const std::lock_guard guard(cell->_lock);
                cell->_record = record;
                cell->_fresh = true;
            });
    }

    void push() { _signal(someRecord); }

    bool poll(std::size_t i)
    {
        const std::lock_guard guard(_cells[i]->_lock);
        if (!_cells[i]->_fresh)
            return false;
        _cells[i]->_fresh = false;
        const Record record = _cells[i]->_record;
        keep(record);
        return true;
    }
    void take(std::size_t i) { poll(i); }

private:
    struct Cell {
        std::mutex _lock;
        Record _record{};
        bool _fresh = false;
    };
    std::vector<std::unique_ptr<Cell>> _cells;
    boost::signals2::signal<void(const Record&)> _signal;
};

} // namespace Bench
