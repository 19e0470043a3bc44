#pragma once

#include "ostrel/Subject.h"
#include "ostrel/TimeStamp.h"
#include <map>
#include <string>

namespace Ostrel {

class BaseObject;

/// Hears of what happens at the subjects it is attached to. Detaches from all of them when it is destroyed.
class Observer {
public:
    /// The name is for messages and may be null.
    explicit Observer(const char* name);
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    virtual ~Observer();

    /// What the three objects are is the subject's matter; each may be null. May attach, detach and destroy observers,
    /// this one included, destroy the subject, and notify again.
    virtual void notify(const TimeStamp& time, BaseObject* first, BaseObject* second, BaseObject* third) = 0;

    const std::string& observerName() const { return _observerName; }

private:
    friend class Subject;

    std::string _observerName;
    std::map<Subject*, Subject::Entries::iterator> _attachments;
};

// Inline, for a frame notifies thousands of subjects, most of which have one observer that finds nothing to do. Nothing
// of the subject is needed after that one.
inline void Subject::notify(const TimeStamp& time, BaseObject* first, BaseObject* second, BaseObject* third)
{
    if (_entries.size() != 1)
        notifyEach(time, first, second, third);
    else if (Observer* const only = _entries.front())
        only->notify(time, first, second, third);
}

} // namespace Ostrel
