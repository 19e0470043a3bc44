#include "ostrel/Subject.h"

#include "ostrel/Observer.h"
#include <iterator>

namespace Ostrel {

/// One running notification. It knows whether its subject still lives, and the outermost one clears up at its end.
class Subject::Walk {
public:
    explicit Walk(Subject& subject) : _subject(&subject), _outer(subject._walk) { subject._walk = this; }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk()
    {
        if (!_subject)
            return;
        _subject->_walk = _outer;
        if (_outer || _subject->_swept)
            return;
        _subject->_entries.remove(nullptr);
        _subject->_swept = true;
    }

    bool subjectLives() const { return _subject; }
    /// Tells this walk and the ones around it.
    void subjectEnds()
    {
        for (Walk* walk = this; walk; walk = walk->_outer)
            walk->_subject = nullptr;
    }

private:
    Subject* _subject;
    Walk* const _outer;
};

Subject::~Subject()
{
    for (Observer* const observer : _entries)
        if (observer)
            observer->_attachments.erase(this);
    if (_walk)
        _walk->subjectEnds();
}

void Subject::notifyEach(const TimeStamp& time, BaseObject* first, BaseObject* second, BaseObject* third)
{
    if (_entries.empty())
        return;
    Walk walk(*this);
    const auto last = std::prev(_entries.end()); // now: nothing leaves the list meanwhile
    for (auto entry = _entries.begin();; ++entry) {
        if (Observer* const observer = *entry)
            observer->notify(time, first, second, third);
        if (!walk.subjectLives() || entry == last)
            return;
    }
}

void Subject::attach(Observer& observer)
{
    if (isAttached(observer))
        return;
    _entries.push_back(&observer);
    try {
        observer._attachments.emplace(this, std::prev(_entries.end()));
    } catch (...) {
        _entries.pop_back();
        throw;
    }
}

void Subject::detach(Observer& observer)
{
    const auto attachment = observer._attachments.find(this);
    if (attachment == observer._attachments.end())
        return;
    drop(attachment->second);
    observer._attachments.erase(attachment);
}

bool Subject::isAttached(const Observer& observer) const
{
    return observer._attachments.contains(const_cast<Subject*>(this));
}

// A running notification may stand on the entry, so it stays until that is over.
void Subject::drop(Entries::iterator entry)
{
    if (!_walk) {
        _entries.erase(entry);
        return;
    }
    *entry = nullptr;
    _swept = false;
}

} // namespace Ostrel
