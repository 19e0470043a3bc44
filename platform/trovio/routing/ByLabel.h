#pragma once

#include "trovio/routing/Chain.h"
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace Trovio {

/// Things that it owns under labels, several under one in the order of their making. A thing has a constructor that
/// takes the label first, which stays where it is as long as the thing does.
template <class T, class Kind>
class ByLabel {
public:
    using Same = Chain<T, Kind>;

    ByLabel() = default;
    ByLabel(const ByLabel&) = delete;
    ByLabel& operator=(const ByLabel&) = delete;
    ~ByLabel() { clear(); }

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
