#pragma once

#include "trovio/routing/Chain.h"
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace Trovio {

/// Finds things by their label, several under one in the order of their making. A thing has a constructor that takes
/// its label first; that text stays where it is for as long as the thing does.
/// Ownership: owns the things.
/// Threads:   whoever holds the tree lock.
template <class T, class Kind>
class LabelIndex {
public:
    using Same = Chain<T, Kind>;

    LabelIndex() = default;
    LabelIndex(const LabelIndex&) = delete;
    LabelIndex& operator=(const LabelIndex&) = delete;
    ~LabelIndex() { clear(); }

    /// Empty where there is nothing under the label.
    Same under(const std::string& label) const
    {
        const auto found = _same.find(label);
        return found == _same.end() ? Same() : found->second;
    }
    auto begin() const { return _same.begin(); }
    auto end() const { return _same.end(); }

    template <class... Arguments>
    T& make(std::string label, Arguments&&... arguments)
    {
        const auto [place, isFirst] = _same.try_emplace(std::move(label));
        try {
            auto made = std::make_unique<T>(place->first, std::forward<Arguments>(arguments)...);
            place->second.append(*made);
            return *made.release();
        } catch (...) {
            if (isFirst)
                _same.erase(place);
            throw;
        }
    }

    void erase(T& thing, const std::string& label)
    {
        const std::unique_ptr<T> gone(&thing);
        const auto place = _same.find(label);
        place->second.remove(thing);
        if (place->second.empty())
            _same.erase(place);
    }

    void clear()
    {
        for (auto& [label, same] : _same) {
            while (!same.empty()) {
                const std::unique_ptr<T> gone(&same.front());
                same.remove(*gone);
            }
        }
        _same.clear();
    }

private:
    std::unordered_map<std::string, Same> _same;
};

} // namespace Trovio
