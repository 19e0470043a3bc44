#include "ostrel/Field.h"

namespace Ostrel {

namespace {

// How far the change that is passed on right now has spread; the scene thread's only.
struct Spread {
    unsigned _depth = 0;
    unsigned _deliveries = 0;
    bool _reported = false;
};
Spread spread;

/// False, with one warning for each change, when a limit is reached.
bool mayDeliver(const Field& from, const Field& to)
{
    if (spread._depth <= Field::maxDepth && spread._deliveries < Field::maxDeliveries) {
        ++spread._deliveries;
        return true;
    }
    if (!spread._reported)
        osg::logMessage(
            osg::LogWarning, {LogModuleName, "Ostrel/Field", __LINE__, __PRETTY_FUNCTION__},
            "A change is not passed on from %s to %s: it passed through %u fields in a row (at most %u), %u "
            "times from field to field (at most %u); use fewer links\n",
            from.getDisplayName().c_str(), to.getDisplayName().c_str(), spread._depth, Field::maxDepth,
            spread._deliveries, Field::maxDeliveries);
    spread._reported = true;
    return false;
}

} // namespace

/// The mark of a field that sends, for as long as it does. Knows whether the field still lives.
class Field::Sending {
public:
    explicit Sending(Field& field) : _field(&field)
    {
        if (spread._depth++ == 0)
            spread = {1, 0, false};
        field._sending = this;
        setIsChanging(true);
    }
    Sending(const Sending&) = delete;
    Sending& operator=(const Sending&) = delete;
    ~Sending()
    {
        --spread._depth;
        if (!_field)
            return;
        setIsChanging(false);
        _field->_sending = nullptr;
    }

    bool fieldLives() const { return _field; }
    void fieldEnds() { _field = nullptr; }

    void setIsChanging(bool on) const
    {
        if (_field->_description)
            _field->_node->setIsChanging(_field->_description->_mask, on);
    }

private:
    Field* _field;
};

Field::~Field()
{
    if (_sending) {
        _sending->setIsChanging(false);
        _sending->fieldEnds();
    }
    for (const auto& [number, target] : _targets)
        target->_sources.erase(this);
    for (const auto& [source, number] : _sources)
        source->_targets.erase(number);
}

void Field::setOwner(Node* node, const FieldDescription* description)
{
    if (_sending)
        _sending->setIsChanging(false);
    _node = description ? node : nullptr;
    _description = node ? description : nullptr;
    if (_sending)
        _sending->setIsChanging(true);
}

std::string Field::getDisplayName() const
{
    return _description ? _node->getDisplayName() + "." + _description->_name : "a field without node";
}

Subject& Field::getSendSubject()
{
    if (!_sendSubject)
        _sendSubject = std::make_unique<Subject>();
    return *_sendSubject;
}

bool Field::receive(const TimeStamp&)
{
    return true;
}

void Field::send(const TimeStamp& time, bool alongLinks, bool initial)
{
    if (_sending)
        return;
    const Sending sending(*this);
    if (_sendSubject)
        _sendSubject->notify(time, _node);
    // By number: links may come and go meanwhile.
    std::uint64_t number = 0;
    while (alongLinks && sending.fieldLives()) {
        const auto link = _targets.upper_bound(number);
        if (link == _targets.end())
            return;
        number = link->first;
        deliver(*link->second, time, initial);
    }
}

void Field::deliver(Field& target, const TimeStamp& time, bool initial) const
{
    if (target._sending || !mayDeliver(*this, target))
        return;
    target.copyValue(*this);
    if (initial && target._description) {
        target.markChanged();
        target.send(0.0, true, true);
    } else if (initial) {
        target.markChanged(); // which sends
    } else {
        target.processValueChange(time, CallerOutside);
    }
}

bool Field::linkTo(Field& target)
{
    const char* problem = nullptr;
    if (&target == this)
        problem = "it is the same field";
    else if (getTypeCode() != target.getTypeCode())
        problem = "both must be of one class";
    else if (isLinkedTo(target))
        problem = "they are linked already";
    if (problem) {
        osg::logMessage(osg::LogWarning, {LogModuleName, "Ostrel/Field", __LINE__, __PRETTY_FUNCTION__},
                        "%s (%s) is not linked to %s (%s): %s\n", getDisplayName().c_str(), getTypeName().c_str(),
                        target.getDisplayName().c_str(), target.getTypeName().c_str(), problem);
        return false;
    }
    const std::uint64_t number = _targets.empty() ? 1 : _targets.rbegin()->first + 1;
    const auto link = _targets.emplace(number, &target).first;
    try {
        target._sources.emplace(this, number);
    } catch (...) {
        _targets.erase(link);
        throw;
    }
    return true;
}

bool Field::unlinkFrom(Field& target)
{
    const auto link = target._sources.find(this);
    if (link == target._sources.end())
        return false;
    _targets.erase(link->second);
    target._sources.erase(link);
    return true;
}

bool Field::isLinkedTo(const Field& target) const
{
    return target._sources.contains(const_cast<Field*>(this));
}

} // namespace Ostrel
