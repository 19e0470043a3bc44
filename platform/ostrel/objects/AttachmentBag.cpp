#include "ostrel/AttachmentBag.h"

#include "osg/LogMessage.h"
#include "osg/LogRecord.h"
#include "ostrel/LogModuleName.h"
#include "ostrel/RefCountObject.h"
#include <utility>

namespace Ostrel {

namespace {
int nextId = 0;
}

AttachmentBag::~AttachmentBag()
{
    // What an attachment does at its end may ask the bag, which is empty by then.
    const auto attached = std::exchange(_attached, {});
    for (const auto& [id, object] : attached)
        object->unref();
}

int AttachmentBag::createUniqueID()
{
    return nextId++;
}

void AttachmentBag::setAttachment(int id, RefCountObject* object)
{
    if (id < 0 || id >= nextId) {
        osg::logMessage(osg::LogFatal, {LogModuleName, "Ostrel/AttachmentBag", __LINE__, __PRETTY_FUNCTION__},
                        "Attachment id %d was not created; allowed are 0 to %d\n", id, nextId - 1);
        return;
    }
    RefCountObject* const old = getAttachment(id);
    if (object) {
        _attached[id] = object;
        object->ref();
    } else {
        _attached.erase(id);
    }
    if (old)
        old->unref();
}

RefCountObject* AttachmentBag::getAttachment(int id) const
{
    const auto found = _attached.find(id);
    return found == _attached.end() ? nullptr : found->second;
}

} // namespace Ostrel
