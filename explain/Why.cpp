#include "explain/Why.h"

#include "explain/SlotTypes.h"
#include "explain/text/Escape.h"
#include "trovio/NodeType.h"
#include "trovio/Root.h"

#include <algorithm>

namespace Explain {
namespace {

using Trovio::Explanation;
using Trovio::Verdict;

// How much of what was asked for the namespace knows: records that flow, then a way, the two ends, one of them.
int known(const Explanation& explanation, const std::string& from)
{
    constexpr Verdict ofEnds[] = {Verdict::NoSuchLabel, Verdict::NoMatch, Verdict::NoExternalRoute,
                                  Verdict::WrongDirection};
    if (explanation._verdict == Verdict::Flowing)
        return 6;
    if (explanation.findText("route"))
        return 5;
    if (std::ranges::find(ofEnds, explanation._verdict) == std::end(ofEnds))
        return explanation._verdict == Verdict::NoRoute ? 4 : 5;
    const std::string* missing = explanation.findText("label");
    const bool hasHint = explanation._verdict != Verdict::NoSuchLabel || explanation.findText("nearest");
    const bool isOneThere = missing && (*missing != from || !explanation.findText("other end"));
    return (isOneThere ? 2 : 0) + (hasHint ? 1 : 0);
}

// The node whose slot has the label: its label stands before the slot's.
const Trovio::NamespaceInfo* nodeAt(const Trovio::NamespaceInfo& info, const std::string& label)
{
    for (const Trovio::NamespaceInfo& child : info._children) {
        const bool below = label.starts_with(child._label + "/");
        const Trovio::NamespaceInfo* node = nodeAt(child, below ? label.substr(child._label.size() + 1) : label);
        if (node || (below && child._node))
            return node ? node : &child;
    }
    return nullptr;
}

std::string settingFor(const Trovio::NodeInfo& node, const std::string& slotType)
{
    for (const Trovio::NodeTypeInfo& type : Trovio::NodeType::list()) {
        if (type._name != node._typeName)
            continue;
        for (const Trovio::Setting& setting : type._settings)
            if (setting._name == std::string_view("type") &&
                ("|" + std::string(setting._choices) + "|").find("|" + slotType + "|") != std::string::npos)
                return "type=" + slotType;
    }
    return {};
}

// What the slot's end must be made to carry that type; empty if nobody can say.
std::string fitAt(const std::string& label, const std::string& slotType, const IsSensor& isSensor)
{
    if (isSensor && isSensor(label))
        return "a sensor of type " + fieldTypeFor(slotType) + " at " + inQuotes(label) + " would fit";
    const Trovio::NamespaceInfo root = Trovio::Root::get().inspect();
    const Trovio::NamespaceInfo* node = nodeAt(root, label);
    const std::string setting = node ? settingFor(*node->_node, slotType) : std::string();
    return setting.empty()
               ? setting
               : "node " + inQuotes(node->_label) + " (" + node->_node->_typeName + ") with " + setting + " would fit";
}
} // namespace

Explanation explainLabels(const std::string& from, const std::string& to, double staleAfter)
{
    Trovio::Namespace& root = Trovio::Root::get();
    std::vector<Explanation> answers;
    for (const Trovio::NamespaceInfo& child : root.inspect()._children)
        if (const Trovio::Namespace* space = root.getNamespace(child._label))
            answers.push_back(space->explain(from, to, staleAfter));
    answers.push_back(root.explain(from, to, staleAfter));
    return *std::ranges::max_element(answers, {}, [&from](const Explanation& answer) { return known(answer, from); });
}

std::string whatFits(const Explanation& explanation, const IsSensor& isSensor)
{
    if (explanation._verdict != Verdict::TypesDiffer)
        return {};
    const std::string in = fitAt(*explanation.findText("in-slot"), *explanation.findText("out type"), isSensor);
    return !in.empty() ? in : fitAt(*explanation.findText("out-slot"), *explanation.findText("in type"), isSensor);
}

bool WhyDecision::take(const Explanation& found, double now)
{
    if (!_start)
        _start = now;
    if (found._verdict != _last._verdict || _since == 0) {
        _since = now;
        _writtenBefore = found.findNumber("written").value_or(0);
    }
    _last = found;
    (found._verdict == Verdict::Flowing ? _flowing : _stopping) = found;
    const double patience = std::max(_patience, found.findNumber("settles").value_or(0));
    _changesAlways = now - *_start >= 3 * patience;
    return found._verdict == Verdict::TypesDiffer || now - _since >= patience || _changesAlways;
}

Explanation WhyDecision::answer() const
{
    if (_changesAlways && _flowing && _stopping && _last._verdict != Verdict::Flowing) {
        Explanation mixed = *_flowing;
        mixed._text += "; but not at all times: " + _stopping->_text;
        return mixed;
    }
    Explanation answer = _last;
    if (answer._verdict != Verdict::Stale)
        return answer;
    const double newer = answer.findNumber("written").value_or(0) - _writtenBefore;
    answer._text += newer > 0 ? "; records still come, so set the clock of their source, or this one"
                              : "; none has come since, so look at the device or the sender";
    return answer;
}
} // namespace Explain
