#pragma once

#include "trovio/routing/Route.h"
#include <map>

namespace Trovio {

/// Keeps apart the pairs of slots of one scope whose connection would lead records back into a node that they came
/// from, and connects them once another joint of that loop is gone, in whichever scope that was.
/// Ownership: refers to routes and views: whoever destroys one releases its pairs before.
/// Threads:   whoever holds the tree lock.
class LoopGuard : public Linked<LoopGuard, struct HoldingPairs> {
public:
    LoopGuard() = default;
    ~LoopGuard() = default; // leaves no list: leaveTree() has to come first
    LoopGuard(const LoopGuard&) = delete;
    LoopGuard& operator=(const LoopGuard&) = delete;

    /// Throws Exception, with the loop spelled out, if the route would close one between these out-slots and what
    /// their labels lead to. It is tried in the graph only, so that a refused route has moved no record.
    static void refuseLoop(const Route& route, const std::vector<SlotView*>& sources, const SlotViews& targets);

    /// Keeps a pair apart, and tells the log why.
    void hold(const ResolvedRoute& route, const SlotView& to, const std::string& reason);
    /// Forgets a pair. False if it is not held.
    bool release(const ResolvedRoute& route, const SlotView& to) noexcept;
    /// Why the pair is held; empty if it is not.
    std::string whyHeld(const ResolvedRoute& route, const SlotView& to) const;

    /// Says that a joint of the graph is gone, for the next retryHeld().
    static void jointWent() noexcept { _retryDue = true; }
    /// If one went, connects all pairs, of all scopes, that close no loop now. Those for which there is no memory wait
    /// for the next joint that goes.
    static void retryHeld() noexcept;

    /// Forgets all pairs. To be called, once, before it is destroyed.
    void leaveTree() noexcept;

private:
    struct HeldPair {
        const ResolvedRoute* _route;
        const SlotView* _to;
        std::string _reason;
    };

    void retryOwn() noexcept;
    static bool isConnected(HeldPair& pair);

    std::map<Relay::Key, HeldPair> _held;
    // Under the tree lock like everything here.
    static Chain<LoopGuard, HoldingPairs> _holding; // those that hold pairs
    static bool _retryDue;
};

} // namespace Trovio
