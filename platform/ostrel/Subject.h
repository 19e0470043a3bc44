#pragma once

#include "ostrel/TimeStamp.h"
#include <list>

namespace Ostrel {

class BaseObject;
class Observer;

/// Tells its observers, in the order in which they were attached. Owns none of them and forgets them when it ends.
/// Attaching and detaching take at most logarithmic time in the number of subjects of the observer.
class Subject {
public:
    Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;
    ~Subject();

    /// An observer is attached at most once; attaching it again does nothing.
    void attach(Observer& observer);
    /// Does nothing when the observer is not attached.
    void detach(Observer& observer);
    bool isAttached(const Observer& observer) const;

    /// Calls each observer that is attached now. One that is detached or destroyed meanwhile is skipped; one that is
    /// attached meanwhile is first called by a notification that begins later. Notifications nest. An exception ends
    /// this one, passes on, and leaves the subject usable.
    void notify(const TimeStamp& time, BaseObject* first = nullptr, BaseObject* second = nullptr,
                BaseObject* third = nullptr);

private:
    friend class Observer;
    using Entries = std::list<Observer*>; // in the order of attaching; null once detached during a notification
    class Walk;

    void notifyEach(const TimeStamp& time, BaseObject* first, BaseObject* second, BaseObject* third);
    void drop(Entries::iterator entry);

    Entries _entries;
    Walk* _walk = nullptr; // the innermost one that runs
    bool _swept = true;    // no entry is null
};

} // namespace Ostrel

#include "ostrel/Observer.h"
