#include "ostrel/Subject.h"

#include "ostrel/Observer.h"

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
        _subject->_entries.remove_if([](const Entry& entry) { return !entry._observer; });
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
    for (const Entry& entry : _entries)
        if (entry._observer)
            entry._observer->_attachments.erase(this);
    if (_walk)
        _walk->subjectEnds();
}

void Subject::attach(Observer& observer)
{
    if (isAttached(observer))
        return;
    _entries.push_back({&observer, ++_number});
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
    entry->_observer = nullptr;
    _swept = false;
}

void Subject::notify(const TimeStamp& time, BaseObject* first, BaseObject* second, BaseObject* third)
{
    const Walk walk(*this);
    const std::uint64_t last = _number;
    for (auto entry = _entries.begin(); entry != _entries.end() && entry->_number <= last; ++entry) {
        if (entry->_observer)
            entry->_observer->notify(time, first, second, third);
        if (!walk.subjectLives())
            return;
    }
}

} // namespace Ostrel
