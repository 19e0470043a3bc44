#pragma once

#include "ostrel/BaseObject.h"

namespace Ostrel {

/// An object that is shared by counted references and deletes itself with the last one.
/// Starts without references; one that is never referenced belongs to whoever made it.
class RefCountObject : public BaseObject {
public:
    RefCountObject() = default;
    RefCountObject(const RefCountObject& other) : BaseObject(other) {} // the references stay with the original
    RefCountObject& operator=(const RefCountObject&) { return *this; }
    ~RefCountObject() override;

    /// Called once the last reference is gone, right before the object is deleted. Does nothing here.
    virtual void shutdown() const;

    void ref() const { ++_references; }
    /// Deletes the object when this was the last reference. Never more often than ref().
    void unref() const;
    unsigned references() const { return _references; }

private:
    mutable unsigned _references = 0;
};

} // namespace Ostrel
