#pragma once

#include "nodes/shared/FileDescriptor.h"

namespace Trovio::Nodes {

/// For a worker, which waits until there is something to read: a descriptor that is readable while another one is
/// ready, for writing, too, if that is wanted. Threads: one at a time.
class ReadyWatch {
public:
    /// Throws std::system_error where the system has no descriptor left.
    ReadyWatch();

    /// From now on, and instead of what was watched before, which must be closed by then: it left the set with that,
    /// and its number may be another thread's by now.
    void watch(int descriptor, bool forWriting);

    int getDescriptor() const { return _set.get(); }

private:
    FileDescriptor _set;
};

} // namespace Trovio::Nodes
