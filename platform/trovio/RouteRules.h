#pragma once

#include "trovio/Pattern.h"
#include <algorithm>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace Trovio {

/// Orders things by when they were made, which keeps connections and listings in a fixed order.
struct BySerial {
    template <class T>
    bool operator()(const T* left, const T* right) const
    {
        return left->_serial < right->_serial;
    }
};

/// A standing rule from a label pattern to a target.
struct RouteRule {
    RouteRule(std::uint64_t serial, const std::string& from, const std::string& to,
              LabelTemplate::Placeholders placeholders)
        : _serial(serial), _from(from), _to(to, _from, placeholders)
    {
    }

    /// For messages.
    std::string quoted() const { return "route '" + _from.getText() + "' -> '" + _to.getText() + "'"; }

    const std::uint64_t _serial;
    const Pattern _from;
    const LabelTemplate _to;
};

/// Owns rules and finds those that match a label. Literal rules are found by hash, only patterns are tried in turn.
/// Threads: whoever holds the tree lock.
template <class Rule>
class RouteRules {
public:
    Rule& add(std::unique_ptr<Rule> rule);

    /// The latest rule with these texts, taken out; null if there is none.
    std::unique_ptr<Rule> take(const std::string& from, const std::string& to);

    /// Calls visit(rule, matched) for every rule that matches.
    template <class Visit>
    void forEachMatch(const std::string& label, Visit visit) const;

    /// In the order in which they were added.
    std::vector<Rule*> all() const;

    void clear();

private:
    std::unordered_map<std::string, std::vector<std::unique_ptr<Rule>>> _byText; // key: text of the pattern
    std::vector<Rule*> _patterns;                                                // those with a '*'
};

template <class Rule>
Rule& RouteRules<Rule>::add(std::unique_ptr<Rule> rule)
{
    if (!rule->_from.isLiteral())
        _patterns.push_back(rule.get());
    return *_byText[rule->_from.getText()].emplace_back(std::move(rule));
}

template <class Rule>
std::unique_ptr<Rule> RouteRules<Rule>::take(const std::string& from, const std::string& to)
{
    const auto same = _byText.find(from);
    if (same == _byText.end())
        return nullptr;
    auto& rules = same->second;
    const auto found =
        std::find_if(rules.rbegin(), rules.rend(), [&to](const auto& rule) { return rule->_to.getText() == to; });
    if (found == rules.rend())
        return nullptr;
    std::unique_ptr<Rule> taken = std::move(*found);
    rules.erase(std::next(found).base());
    if (rules.empty())
        _byText.erase(same);
    if (!taken->_from.isLiteral())
        std::erase(_patterns, taken.get());
    return taken;
}

template <class Rule>
template <class Visit>
void RouteRules<Rule>::forEachMatch(const std::string& label, Visit visit) const
{
    if (const auto same = _byText.find(label); same != _byText.end()) {
        for (const auto& rule : same->second) {
            if (rule->_from.isLiteral())
                visit(*rule, std::vector<std::string_view>());
        }
    }
    for (Rule* rule : _patterns) {
        if (const auto matched = rule->_from.match(label))
            visit(*rule, *matched);
    }
}

template <class Rule>
std::vector<Rule*> RouteRules<Rule>::all() const
{
    std::vector<Rule*> rules;
    for (const auto& [text, same] : _byText) {
        for (const auto& rule : same)
            rules.push_back(rule.get());
    }
    std::sort(rules.begin(), rules.end(), BySerial());
    return rules;
}

template <class Rule>
void RouteRules<Rule>::clear()
{
    _patterns.clear();
    _byText.clear();
}

} // namespace Trovio
