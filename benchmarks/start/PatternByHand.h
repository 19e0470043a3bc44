#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// A text cut at each '*': as a pattern it tells what each stands for, going through a label once; as a target it takes
/// that in their place.
class PatternByHand {
public:
    explicit PatternByHand(std::string_view text)
    {
        for (std::size_t star = text.find('*'); star != text.npos; star = text.find('*')) {
            _pieces.emplace_back(text.substr(0, star));
            text.remove_prefix(star + 1);
        }
        _pieces.emplace_back(text);
    }

    bool match(std::string_view label, std::vector<std::string_view>& stars) const
    {
        const std::string& first = _pieces.front();
        const std::string& last = _pieces.back();
        if (_pieces.size() == 1)
            return label == first;
        if (label.size() < first.size() + last.size() || !label.starts_with(first) || !label.ends_with(last))
            return false;
        stars.clear();
        label.remove_prefix(first.size());
        label.remove_suffix(last.size());
        for (std::size_t i = 1; i + 1 < _pieces.size(); ++i) {
            const std::size_t found = label.find(_pieces[i]);
            if (found == label.npos)
                return false;
            stars.push_back(label.substr(0, found));
            label.remove_prefix(found + _pieces[i].size());
        }
        stars.push_back(label);
        return true;
    }

    std::string expand(const std::vector<std::string_view>& stars) const
    {
        std::string label = _pieces.front();
        for (std::size_t i = 1; i < _pieces.size(); ++i)
            label.append(stars[i - 1]).append(_pieces[i]);
        return label;
    }

private:
    std::vector<std::string> _pieces;
};

} // namespace Bench
