#pragma once

namespace Ostrel {

/// Root of the scene's classes; counts the live objects.
/// Threads: the scene side (everything in this folder) runs on one thread, the scene thread, and takes no locks.
class BaseObject {
public:
    BaseObject() { ++_objCount; }
    BaseObject(const BaseObject&) { ++_objCount; }
    BaseObject& operator=(const BaseObject&) = default;
    virtual ~BaseObject();

    static int _objCount;
};

} // namespace Ostrel
