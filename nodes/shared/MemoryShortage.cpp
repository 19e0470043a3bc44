#include "nodes/shared/MemoryShortage.h"

#include "nodes/shared/Report.h"

namespace Trovio::Nodes {

void MemoryShortage::note() noexcept
{
    _counter.add();
    try {
        if (const auto more = _reports.admit())
            report(osg::LogWarning, _what() + ": there was no memory for a value" + *more +
                                        "; it goes on, and counts them as '" + _counter.getName() + "'");
    } catch (const std::bad_alloc&) {
        // No memory to say so; the counter tells.
    }
}

} // namespace Trovio::Nodes
