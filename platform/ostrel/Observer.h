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

} // namespace Ostrel
