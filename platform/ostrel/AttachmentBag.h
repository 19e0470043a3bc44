#pragma once

#include "ostrel/BaseObject.h"
#include <map>

namespace Ostrel {

class RefCountObject;

/// Carries objects for others, each under an id that its user obtained once for all bags.
class AttachmentBag : public BaseObject {
public:
    AttachmentBag() = default;
    AttachmentBag(const AttachmentBag&) = delete;
    AttachmentBag& operator=(const AttachmentBag&) = delete;
    /// Releases all attachments.
    ~AttachmentBag() override;

    /// A number that no earlier call returned; never negative.
    static int createUniqueID();

    /// Takes a reference to the object, then releases the one that stood under the id; null only releases. An id that
    /// createUniqueID() did not return is refused with a fatal-level message.
    void setAttachment(int id, RefCountObject* object);
    /// Null when nothing stands under the id. The bag keeps its reference.
    RefCountObject* getAttachment(int id) const;

private:
    std::map<int, RefCountObject*> _attached; // one reference each, none null
};

} // namespace Ostrel
