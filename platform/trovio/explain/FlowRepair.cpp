#include "trovio/explain/FlowQuery.h"

#include "trovio/Node.h"
#include "trovio/messages/NearestName.h"
#include <map>

// What labels that nobody has were most likely meant to be, and which routes with such labels are missing on a way.
namespace Trovio {

namespace {

constexpr std::size_t mostRoutes = 32; // that are looked at: each costs a walk through all labels
constexpr std::size_t mostNames = 3;   // that one label may have meant

std::string nearestOf(const std::string& label, const std::vector<std::string>& known)
{
    const std::vector<std::string_view> views(known.begin(), known.end());
    return std::string(nearestName(label, views));
}

} // namespace

/// Labels of that direction that are right but for one thing: a node's slot without the slot's label or without those
/// of the namespaces before it or between, with one label too many in front, by the node's type instead of its label,
/// misspelt.
std::vector<std::string> FlowQuery::meant(const std::string& label, const std::vector<std::string>& known) const
{
    std::vector<std::string> names;
    const std::size_t slash = label.find('/');
    const std::string rest = slash == std::string::npos ? std::string() : label.substr(slash + 1);
    const auto leavesPartOut = [&, node = label.substr(0, slash)](const std::string& name) {
        return name == rest || name.starts_with(label + "/") || name.ends_with("/" + label) ||
               (!rest.empty() && name.starts_with(node + "/") && name.ends_with("/" + rest));
    };
    for (const std::string& name : known)
        if (names.size() < mostNames && leavesPartOut(name))
            names.push_back(name);
    for (const std::string& node : nodesOfType(label.substr(0, slash)))
        for (const std::string& name : known)
            if (names.empty() && name == node + "/" + rest)
                names.push_back(name);
    if (names.empty())
        names.push_back(nearestOf(label, known));
    std::erase(names, std::string());
    return names;
}

std::vector<std::string> FlowQuery::nodesOfType(const std::string& type) const
{
    std::vector<std::string> labels;
    for (const Below& below : _below)
        if (below._scope->_node && below._scope->_node->getTypeName() == type)
            labels.push_back(below._path);
    return labels;
}

/// "; did you mean 'a' or 'b'?", or nothing.
std::string FlowQuery::hint(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "; did you mean '" : " or '") + name + "'";
    return text.empty() ? text : text + "?";
}

/// Routes of this scope with an end that nobody has, or with both the wrong way round, and what was meant.
std::vector<FlowQuery::Repair> FlowQuery::repairs() const
{
    const std::vector<std::string> outs = labels(Slot::Direction::Out), ins = labels(Slot::Direction::In);
    std::vector<Repair> found;
    const auto look = [&](const Scope::Route& route, const std::string& from, const std::string& to) {
        const auto ends = [&](const std::string& label, Slot::Direction direction, const auto& known) {
            return findEnds(label, direction).empty() ? meant(label, known) : std::vector<std::string>{label};
        };
        if (!findEnds(from, Slot::Direction::In).empty() && !findEnds(to, Slot::Direction::Out).empty())
            return found.push_back({&route, from, to, to, from});
        for (const std::string& start : ends(from, Slot::Direction::Out, outs))
            for (const std::string& end : ends(to, Slot::Direction::In, ins))
                if (start != from || end != to)
                    found.push_back({&route, from, to, start, end});
    };
    std::size_t looked = 0;
    for (const Scope::Route* route : _here._routes.all()) {
        if (route->_connections != 0 || looked++ >= mostRoutes)
            continue;
        if (route->_from.isLiteral())
            look(*route, route->_from.getText(), route->_to.getText());
        else if (!route->_aims.empty())
            look(*route, route->_aims.front()._from->_label, route->_aims.front()._target);
    }
    return found;
}

/// The first route on the way from the slots to one of the ends that would lead there if its labels were right.
const FlowQuery::Repair* FlowQuery::firstOf(const std::vector<Repair>& repairs, const Entries& reached,
                                            const Entries& ends) const
{
    std::map<const Entry*, const Repair*> firsts; // on the way to an out-slot, by its home
    for (const Entry* home : reached)
        firsts[home] = nullptr;
    std::vector<bool> used(repairs.size());
    for (std::size_t i = 0; i < repairs.size(); ++i) {
        const Repair& repair = repairs[i];
        const auto known = firsts.find(FlowSearch::home(findEnds(repair._from, Slot::Direction::Out).front()));
        if (used[i] || known == firsts.end())
            continue;
        used[i] = true;
        const Repair* const first = known->second ? known->second : &repair;
        const FlowSearch onward(findEnds(repair._to, Slot::Direction::In));
        if (!onward.findPath(ends).empty())
            return first;
        for (const Entry* home : onward.reachedOuts())
            firsts.try_emplace(home, first);
        i = static_cast<std::size_t>(-1); // with what can be reached now, look at all of them again
    }
    return nullptr;
}

Explanation FlowQuery::misnamed(const Repair& repair) const
{
    const std::string route = repair._route->quoted();
    Explanation cause;
    if (repair._givenFrom == repair._to && repair._givenTo == repair._from) {
        cause = {Verdict::WrongDirection,
                 route + " leads the other way; swap its two ends",
                 {{"label", repair._givenFrom}, {"cure", "swap the two ends"}}};
    } else {
        cause = repair._givenFrom != repair._from ? whyNoEnd(repair._givenFrom, Slot::Direction::Out)
                                                  : whyNoEnd(repair._givenTo, Slot::Direction::In);
        cause._text = route + ": " + cause._text;
    }
    cause._details.push_back({"route", route});
    cause._details.push_back({"route from", repair._givenFrom});
    return withCure(std::move(cause), repair._from, repair._to);
}

/// Says, for programs, between which labels of which namespace a route would help.
Explanation FlowQuery::withCure(Explanation cause, const std::string& from, const std::string& to) const
{
    cause._details.push_back({"cure from", from});
    cause._details.push_back({"cure to", to});
    cause._details.push_back({"cure in", _here._label});
    return cause;
}

} // namespace Trovio
