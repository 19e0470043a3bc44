#pragma once

#include "trovio/Hooks.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"

namespace Trovio {

/// Connecting and disconnecting, once for both sides: it makes no difference on which slot it was asked for.
/// A connection is born on the in-slot's side first and dies on the out-slot's side first, so that an in-slot knows of
/// every out-slot that may push into it.
template <class T>
class Wiring {
public:
    static void connect(OutSlot<T>& outSlot, InSlot<T>& inSlot)
    {
        const Hooks::WiringGuard guard;
        // The memory for both sides first, so that they never disagree.
        reserve(inSlot, inSlot._outSlots);
        reserve(outSlot, outSlot._inSlots);
        attachOutSlot(inSlot, outSlot);
        attachInSlot(outSlot, inSlot);
    }

    static void disconnect(OutSlot<T>& outSlot, InSlot<T>& inSlot)
    {
        const Hooks::WiringGuard guard;
        detach(outSlot, outSlot._inSlots, inSlot, [&outSlot] { outSlot.stopOutSlot(); });
        detach(inSlot, inSlot._outSlots, outSlot, [&inSlot] { inSlot.stopInSlot(); });
    }

private:
    template <class SlotT, class PeerSlot>
    static void reserve(SlotT& slot, Peers<PeerSlot>& peers) OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        slot.lock();
        try {
            reservePeer(peers);
        } catch (...) {
            slot.unlock();
            throw;
        }
        slot.unlock();
    }

    static void attachOutSlot(InSlot<T>& inSlot, OutSlot<T>& outSlot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        inSlot.listenersLock();
        inSlot.lock();
        const bool wasEmpty = inSlot._outSlots.empty();
        addPeer(inSlot._outSlots, outSlot);
        inSlot.unlock();
        if (wasEmpty)
            inSlot.startInSlot();
        inSlot.listenersUnlock();
    }

    static void attachInSlot(OutSlot<T>& outSlot, InSlot<T>& inSlot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        outSlot.listenersLock();
        outSlot.lock();
        const bool wasEmpty = outSlot._inSlots.empty();
        const bool isNew = addPeer(outSlot._inSlots, inSlot);
        // A new reader starts with the current value, before the producer hears of it.
        if (isNew && outSlot.hasValue())
            inSlot.push(outSlot._data);
        outSlot.unlock();
        if (wasEmpty)
            outSlot.startOutSlot();
        outSlot.listenersUnlock();
    }

    /// Stops a slot that has no connection left, also where it never had one.
    template <class SlotT, class PeerSlot, class Stop>
    static void detach(SlotT& slot, Peers<PeerSlot>& peers, const PeerSlot& peer,
                       Stop stop) OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        slot.listenersLock();
        slot.lock();
        removePeer(peers, peer);
        const bool isEmpty = peers.empty();
        slot.unlock();
        if (isEmpty)
            stop();
        slot.listenersUnlock();
    }
};

template <class T>
void InSlot<T>::connect(BasicOutSlot* outSlot)
{
    if (auto* const peer = dynamic_cast<OutSlot<T>*>(outSlot))
        Wiring<T>::connect(*peer, *this);
}

template <class T>
void InSlot<T>::disconnect(BasicOutSlot* outSlot)
{
    if (auto* const peer = dynamic_cast<OutSlot<T>*>(outSlot))
        Wiring<T>::disconnect(*peer, *this);
}

template <class T>
BasicInSlot* OutSlot<T>::createMatchingInSlot()
{
    return new InSlot<T>(std::string());
}

template <class T>
void OutSlot<T>::connect(BasicInSlot* inSlot)
{
    if (auto* const peer = dynamic_cast<InSlot<T>*>(inSlot))
        Wiring<T>::connect(*this, *peer);
}

template <class T>
void OutSlot<T>::disconnect(BasicInSlot* inSlot)
{
    if (auto* const peer = dynamic_cast<InSlot<T>*>(inSlot))
        Wiring<T>::disconnect(*this, *peer);
}

} // namespace Trovio

#include "trovio/Instances.h"
