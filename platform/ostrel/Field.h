#pragma once

#include "osg/LogMessage.h"
#include "osg/LogRecord.h"
#include "ostrel/FieldDescription.h"
#include "ostrel/LogModuleName.h"
#include "ostrel/Node.h"
#include "ostrel/Subject.h"
#include "ostrel/TimeStamp.h"
#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace Ostrel {

/// Who changed a value.
enum CallerType : int {
    CallerOutside = 0, // another field, or a service such as a sensor's observer
    CallerNode = 1,    // the node that the field belongs to
};

/// A value of a node. Whoever writes the value calls processValueChange() afterwards.
/// Ownership: a field does not own the fields that it is linked to; a link ends with either of its two fields.
/// Threads:   the scene thread only.
class Field {
public:
    Field() = default;
    Field(const Field&) = delete;
    Field& operator=(const Field&) = delete;
    virtual ~Field();

    /// Number of the field's class, 1 to 42 for those of FieldClass.
    virtual int getTypeCode() const = 0;
    /// E.g. "SFVec3f".
    virtual const std::string& getTypeName() const = 0;
    /// Takes over the value of a field of the same class; announces nothing.
    virtual void copyValue(const Field& from) = 0;

    /// Passes the value on: first to the observers of getSendSubject(), then, with `alongLinks`, to the linked fields
    /// in the order of linking, each of which passes it on in turn. `initial` means that the node is not running yet:
    /// linked fields then take the value without being asked. A field that is sending does not send again and takes
    /// nothing from a link: that ends loops. Branching is limited as maxDepth and maxDeliveries say.
    virtual void send(const TimeStamp& time, bool alongLinks, bool initial);
    /// Asked when a value came in; false keeps it from being sent. Here always true.
    virtual bool receive(const TimeStamp& time);

    /// Announces that the value was changed: marks it and sends it as the description's access and the node's state
    /// say.
    void processValueChange(const TimeStamp& time, CallerType caller);
    /// Sets the marks of a change without an event. A field without description sends its value as an initial one.
    void markChanged();

    /// Null while the field belongs to no node.
    Node* getNode() const { return _node; }
    const FieldDescription* getDescription() const { return _description; }
    /// Both or neither are given. Neither is owned; both outlive the field or are taken back by two nulls.
    void setOwner(Node* node, const FieldDescription* description);

    /// "node.field" for messages.
    std::string getDisplayName() const;

    /// From now on `target` gets each value that this field sends. Refused with a warning, returning false, for another
    /// class of field, for the field itself and for a link that exists.
    bool linkTo(Field& target);
    /// False when there is no such link.
    bool unlinkFrom(Field& target);
    bool isLinkedTo(const Field& target) const;

    /// Notified with the field's node whenever the field sends.
    Subject& getSendSubject();

    /// One change passes through at most so many fields in a row, and so many times from field to field in all. What is
    /// beyond is not sent, and a warning says so.
    static constexpr unsigned maxDepth = 1'000;
    static constexpr unsigned maxDeliveries = 100'000;

private:
    class Sending;

    void deliver(Field& target, const TimeStamp& time, bool initial) const;

    Node* _node = nullptr;
    const FieldDescription* _description = nullptr;
    Sending* _sending = nullptr;              // the mark: not null while this field sends
    std::map<std::uint64_t, Field*> _targets; // by the number of the link, so in the order of linking
    std::map<Field*, std::uint64_t> _sources; // with the number that this field has there
    std::unique_ptr<Subject> _sendSubject;    // made when first asked for
};

inline void Field::markChanged()
{
    if (!_description) {
        osg::logMessage(osg::LogInfo, {LogModuleName, "Ostrel/Field", __LINE__, __PRETTY_FUNCTION__},
                        "Field without desc in XField::markChanged()\n");
        send(0.0, true, true);
        return;
    }
    if (!_node->isMarked()) {
        _node->markParent(1);
        _node->setFlags(Node::Marked);
    }
    _node->setChanged(_description->_mask);
}

inline void Field::processValueChange(const TimeStamp& time, CallerType caller)
{
    if (!_description)
        return;
    if (_node->isTraced())
        osg::logMessage(osg::LogAlways, {LogModuleName, "Ostrel/Field", __LINE__, __PRETTY_FUNCTION__},
                        "%s/%s.%s: processValueChange()\n", _node->type().getName().c_str(),
                        _node->getDisplayName().c_str(), _description->_name.c_str());
    const bool forwards = (_description->_flags & FieldDescription::Forwards) != 0;
    if ((_node->isChangingMask() & _description->_mask) != 0 && forwards)
        osg::logMessage(osg::LogWarning, {LogModuleName, "Ostrel/Field", __LINE__, __PRETTY_FUNCTION__},
                        "%s/%s.%s: processValueChange() && _isChangingMask set\n", _node->type().getName().c_str(),
                        _node->getDisplayName().c_str(), _description->_name.c_str());

    if (_node->state() != NodeState::Active && _node->state() != NodeState::Updating) {
        markChanged();
        send(0.0, true, true);
        return;
    }
    switch (_description->_access) {
    case FieldAccess::Setting:
    case FieldAccess::EventOut:
        markChanged();
        send(time, true, false);
        return;
    case FieldAccess::EventIn:
        markChanged();
        if (receive(time))
            send(time, true, false);
        return;
    case FieldAccess::Exposed:
        markChanged();
        if (receive(time) && (forwards || caller == CallerNode))
            send(time, true, false);
        return;
    }
}

} // namespace Ostrel
