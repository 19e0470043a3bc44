#pragma once

#include "trovio/Labels.h"
#include "trovio/routing/LabelIndex.h"
#include "trovio/routing/Pattern.h"
#include "trovio/routing/Serial.h"
#include <string>
#include <vector>

namespace Trovio {

/// A standing rule from a label pattern to a target.
struct RouteRule {
    RouteRule(const std::string& from, const std::string& to, LabelTemplate::Placeholders placeholders)
        : _from(from), _to(to, _from, placeholders)
    {
    }

    /// For messages.
    std::string quoted() const { return "route '" + _from.getText() + "' -> '" + _to.getText() + "'"; }

    /// It joins slots with those of a tool.
    bool isForTools() const { return Trovio::isForTools(_from.getText()) || Trovio::isForTools(_to.getText()); }

    const std::uint64_t _serial = nextSerial();
    const Pattern _from;
    const LabelTemplate _to;

    // Kinds of chains: those with the same pattern, those with a '*', and all.
    struct OfText;
    struct OfStars;
    struct OfAll;
};

/// A rule that can stand in RouteRules.
template <class Rule>
struct ListedRule : RouteRule,
                    Linked<Rule, RouteRule::OfText>,
                    Linked<Rule, RouteRule::OfStars>,
                    Linked<Rule, RouteRule::OfAll> {
    using RouteRule::RouteRule;
};

/// Owns rules and finds those that match a label. Literal rules are found by hash, only patterns are tried in turn.
/// Threads: whoever holds the tree lock.
template <class Rule>
class RouteRules {
public:
    /// Throws Exception for a bad pattern; nothing was added then.
    Rule& make(const std::string& from, const std::string& to, LabelTemplate::Placeholders placeholders);
    void erase(Rule& rule);

    /// The latest rule with these texts; null if there is none.
    Rule* find(const std::string& from, const std::string& to) const;

    /// Calls visit(rule, matched) for every rule that matches.
    template <class Visit>
    void forEachMatch(const std::string& label, Visit visit) const;

    /// In the order in which they were added.
    const Chain<Rule, RouteRule::OfAll>& all() const { return _all; }

    void clear();

private:
    LabelIndex<Rule, RouteRule::OfText> _byText; // key: text of the pattern
    Chain<Rule, RouteRule::OfStars> _patterns;
    Chain<Rule, RouteRule::OfAll> _all;
};

template <class Rule>
Rule& RouteRules<Rule>::make(const std::string& from, const std::string& to, LabelTemplate::Placeholders placeholders)
{
    Rule& rule = _byText.make(from, to, placeholders);
    if (!rule._from.isLiteral())
        _patterns.append(rule);
    _all.append(rule);
    return rule;
}

template <class Rule>
void RouteRules<Rule>::erase(Rule& rule)
{
    if (!rule._from.isLiteral())
        _patterns.remove(rule);
    _all.remove(rule);
    _byText.erase(rule, rule._from.getText());
}

template <class Rule>
Rule* RouteRules<Rule>::find(const std::string& from, const std::string& to) const
{
    return _byText.under(from).findLast([&to](const Rule& rule) { return rule._to.getText() == to; });
}

template <class Rule>
template <class Visit>
void RouteRules<Rule>::forEachMatch(const std::string& label, Visit visit) const
{
    for (Rule* rule : _byText.under(label)) {
        if (rule->_from.isLiteral())
            visit(*rule, std::vector<std::string_view>());
    }
    for (Rule* rule : _patterns) {
        if (const auto matched = rule->_from.match(label))
            visit(*rule, *matched);
    }
}

template <class Rule>
void RouteRules<Rule>::clear()
{
    _patterns = {};
    _all = {};
    _byText.clear();
}

} // namespace Trovio
