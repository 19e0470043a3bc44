#pragma once

#include "trovio/Namespace.h"
#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace Trovio {

/// The one root of the tree.
class Root {
public:
    static std::atomic<bool> initialized_;
    static Namespace the_;

    /// Opens the root for use. A second call does nothing.
    static void init();

    /// Takes out and deletes everything below the root (nodes stop first), forgets all node types and closes their
    /// modules. Whoever still holds a node that it took out of the tree must delete it before. Does nothing on a root
    /// that is not open.
    static void shutdown();

    /// The root namespace. Ends the process if the root is not open.
    static Namespace& get()
    {
        if (!initialized_.load(std::memory_order_acquire)) {
            std::fputs("FATAL: Accessed Trovio::Root that is not initialized!\n", stderr);
            std::abort();
        }
        return the_;
    }

    /// All slots of the tree but those of tools, each with its activity, but without a look at connections: _active is
    /// false. A slot has the labels under which the root sees it, here once for each; an empty one where it does not.
    /// In no order, but for slots that share a label. The tree is locked for some hundred slots at a time, so that who
    /// waits for it waits a fraction of the time of Namespace::inspect(); what comes or goes meanwhile may be missing.
    static std::vector<SlotInfo> listSlots();
    /// All nodes of the tree but those of tools, by the labels down to them, without remarks.
    static std::map<std::string, NodeInfo> listNodes();

    Root() = delete;

private:
    static std::vector<std::string> listLabels();
};

} // namespace Trovio
