#include "trovio/explain/VisibleSlots.h"

#include "trovio/Node.h"
#include "trovio/explain/PathSearch.h"
#include <set>

namespace Trovio {

SlotViewList VisibleSlots::find(const std::string& label, Slot::Direction direction) const
{
    SlotViewList found;
    for (const SlotView* view : _here.getViews().under(label)) {
        if (view->_ref.is(direction))
            found.push_back(view);
    }
    return found;
}

std::vector<std::string> VisibleSlots::labels(Slot::Direction direction) const
{
    std::set<std::string> found;
    for (const auto& [label, same] : _here.getViews()) {
        if (isForTools(label))
            continue;
        for (const SlotView* view : same) {
            if (view->_ref.is(direction))
                found.insert(label);
        }
    }
    return {found.begin(), found.end()};
}

const SlotView* VisibleSlots::findBelow(const std::string& label, Slot::Direction direction) const
{
    for (const Below& below : _below) {
        const bool full = label.starts_with(below._path + "/");
        const std::string there = full ? label.substr(below._path.size() + 1) : label;
        for (const SlotView* seen : below._scope->getViews().under(there))
            if (seen->_ref.is(direction))
                return &seen->home();
    }
    return nullptr;
}

std::vector<std::string> VisibleSlots::nodesOfType(const std::string& type) const
{
    std::vector<std::string> labels;
    for (const Below& below : _below)
        if (const Node* const node = below._scope->getNode(); node && node->getTypeName() == type)
            labels.push_back(below._path);
    return labels;
}

std::string VisibleSlots::labelOf(const SlotView& home) const
{
    const SlotView* seen = nullptr;
    forEachView(home, [&](const SlotView& view) {
        if (view._scope == &_here && !seen)
            seen = &view;
    });
    return seen ? seen->_label : nameOf(*home._scope) + "/" + home._label;
}

std::string VisibleSlots::nameOf(const Scope& scope) const
{
    for (const Below& below : _below) {
        if (below._scope == &scope)
            return below._path;
    }
    return scope.getLabel();
}

VisibleSlots VisibleSlots::at(const Scope& scope) const
{
    if (&scope == &_here)
        return *this;
    std::vector<Below> below;
    const std::string prefix = nameOf(scope) + "/";
    for (const Below& known : _below) {
        if (known._path.starts_with(prefix))
            below.push_back({known._path.substr(prefix.size()), known._scope});
    }
    return {scope, std::move(below)};
}

} // namespace Trovio
