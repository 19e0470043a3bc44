#pragma once

#include "ostrel/TimeStamp.h"
#include <cstdint>
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
    struct Entry {
        Observer* _observer; // null once detached during a notification
        std::uint64_t _number;
    };
    using Entries = std::list<Entry>;

    /// One running notification. It knows whether its subject still lives, and the outermost one clears up at its end.
    class Walk {
    public:
        explicit Walk(Subject& subject) : _subject(&subject), _outer(subject._walk) { subject._walk = this; }
        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;
        ~Walk()
        {
            if (!_subject)
                return;
            _subject->_walk = _outer;
            if (!_outer && !_subject->_swept)
                sweep();
        }

        bool subjectLives() const { return _subject; }
        /// Tells this walk and the ones around it.
        void subjectEnds()
        {
            for (Walk* walk = this; walk; walk = walk->_outer)
                walk->_subject = nullptr;
        }

    private:
        void sweep();

        Subject* _subject;
        Walk* const _outer;
    };

    void drop(Entries::iterator entry);

    Entries _entries;          // ascending by number
    std::uint64_t _number = 0; // of the entry attached last
    Walk* _walk = nullptr;     // the innermost notification that runs
    bool _swept = true;        // no entry is null
};

} // namespace Ostrel

#include "ostrel/Observer.h"
