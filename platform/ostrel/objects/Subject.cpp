#include "ostrel/Subject.h"

#include "ostrel/Observer.h"

namespace Ostrel {

void Subject::Walk::sweep()
{
    _subject->_entries.remove_if([](const Entry& entry) { return !entry._observer; });
    _subject->_swept = true;
}

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

} // namespace Ostrel
