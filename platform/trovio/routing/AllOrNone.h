#pragma once

namespace Trovio {

/// Calls act for one thing after the other. Where it throws, the things before are taken back and the exception passes
/// on; undo must not throw.
template <class Things, class Act, class Undo>
void allOrNone(const Things& things, const Act& act, const Undo& undo)
{
    auto reached = things.begin();
    try {
        for (; reached != things.end(); ++reached)
            act(**reached);
    } catch (...) {
        for (auto done = things.begin(); done != reached; ++done)
            undo(**done);
        throw;
    }
}

} // namespace Trovio
