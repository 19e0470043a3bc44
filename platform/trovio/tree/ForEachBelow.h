#pragma once

#include "trovio/Namespace.h"

namespace Trovio {

template <class Visit>
void Namespace::forEachBelow(const std::string& path, const Visit& visit) const
{
    for (const auto& [label, child] : _children) {
        if (isForTools(label))
            continue;
        const std::string childPath = path.empty() ? label : path + "/" + label;
        visit(childPath, *child->_scope);
        child->forEachBelow(childPath, visit);
    }
}

} // namespace Trovio
