#include "ostrel/AttachmentBag.h"
#include "ostrel/RefCountObject.h"
#include "tests/support/LogCapture.h"
#include <gtest/gtest.h>
#include <memory>

using namespace Ostrel;

namespace {

class Counted : public RefCountObject {
public:
    explicit Counted(std::string& log) : _log(log) {}
    ~Counted() override { _log += "deleted "; }
    void shutdown() const override { _log += "shutdown "; }

private:
    std::string& _log;
};

TEST(AttachmentBag, HoldsOneReferenceUntilReplacedClearedOrDone)
{
    const int id = AttachmentBag::createUniqueID(), other = AttachmentBag::createUniqueID();
    std::string log;
    auto* object = new Counted(log);
    auto bag = std::make_unique<AttachmentBag>();
    bag->setAttachment(id, object);
    bag->setAttachment(id, object); // taken before it is released, so it survives
    bag->setAttachment(other, object);
    EXPECT_EQ(object->references(), 2U);
    bag->setAttachment(id, nullptr);
    EXPECT_EQ(bag->getAttachment(id), nullptr);
    bag->setAttachment(other, new Counted(log));
    EXPECT_EQ(log, "shutdown deleted ");
    bag.reset();
    EXPECT_EQ(log, "shutdown deleted shutdown deleted ");
}

TEST(AttachmentBag, RefusesIdsThatWereNotCreated)
{
    const LogCapture capture;
    std::string log;
    Counted object(log);
    AttachmentBag bag;
    for (const int id : {-1, AttachmentBag::createUniqueID() + 1}) {
        bag.setAttachment(id, &object);
        EXPECT_EQ(bag.getAttachment(id), nullptr);
    }
    EXPECT_EQ(object.references(), 0U);
    ASSERT_EQ(capture.entries().size(), 2U);
    EXPECT_EQ(capture.entries()[0]._level, osg::LogFatal);
}

} // namespace
