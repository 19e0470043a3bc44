#pragma once

#include "host/show/KeyPresses.h"
#include "host/show/SensorFilter.h"

#include <cstdint>

namespace Host {

/// What keys change in the live table: its first row, its filter and its order. Threads: one.
class TableControl {
public:
    enum class Order { Scene, Name, Rate, Age };

    explicit TableControl(SensorFilter filter) : _filter(std::move(filter)) {}

    void press(const KeyPress& press);

    /// The page that is shown: what paging starts from.
    void shown(std::size_t first, std::size_t rows);

    std::size_t first() const { return _first; }
    const SensorFilter& filter() const { return _filter; }
    bool isEditing() const { return _isEditing; }
    Order order() const { return _order; }

    /// One line about what is shown of `rows` rows, and which keys there are if `withKeys`.
    std::string status(std::size_t rows, bool withKeys) const;
    /// Whether that line says more than that all is shown in the order of the scene.
    bool hasStatus(std::size_t rows) const;

private:
    void edit(const KeyPress& press);
    void scroll(Key key);
    void setFilter(const std::string& text);

    SensorFilter _filter;
    Order _order = Order::Scene;
    std::size_t _first = 0, _rows = 1; // _rows of them were on the screen
    bool _isEditing = false;           // the filter
};
} // namespace Host
