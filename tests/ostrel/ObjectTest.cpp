#include "ostrel/AttachmentBag.h"
#include "ostrel/Node.h"
#include "ostrel/RefCountObject.h"
#include "tests/support/LogCapture.h"
#include <gtest/gtest.h>
#include <memory>

using namespace Ostrel;

namespace {

class Counted : public RefCountObject {
public:
    explicit Counted(std::string& log) : _log(log) {}
    Counted(const Counted&) = default;
    ~Counted() override { _log += "deleted "; }
    void shutdown() const override { _log += "shutdown "; }

private:
    std::string& _log;
};

TEST(RefCountObject, EndsWithItsLastReference)
{
    std::string log;
    const int before = BaseObject::_objCount;
    auto* object = new Counted(log);
    object->ref();
    object->ref();
    {
        const Counted copy(*object);
        EXPECT_EQ(copy.references(), 0U);
        EXPECT_EQ(BaseObject::_objCount, before + 2);
    }
    object->unref();
    EXPECT_EQ(log, "deleted ");
    object->unref();
    EXPECT_EQ(log, "deleted shutdown deleted ");
    EXPECT_EQ(BaseObject::_objCount, before);
}

TEST(AttachmentBag, HoldsOneReferenceUntilReplacedClearedOrDone)
{
    const int id = AttachmentBag::createUniqueID();
    const int other = AttachmentBag::createUniqueID();
    EXPECT_NE(id, other);
    std::string log;
    auto* object = new Counted(log);
    auto bag = std::make_unique<AttachmentBag>();
    bag->setAttachment(id, object);
    bag->setAttachment(id, object); // taken before it is released, so it survives
    bag->setAttachment(other, object);
    EXPECT_EQ(object->references(), 2U);
    bag->setAttachment(id, nullptr);
    EXPECT_EQ(bag->getAttachment(id), nullptr);
    EXPECT_EQ(object->references(), 1U);
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
    const int unknown = AttachmentBag::createUniqueID() + 1;
    for (const int id : {-1, unknown}) {
        bag.setAttachment(id, &object);
        EXPECT_EQ(bag.getAttachment(id), nullptr);
    }
    EXPECT_EQ(object.references(), 0U);
    ASSERT_EQ(capture.entries().size(), 2U);
    EXPECT_EQ(capture.entries()[0]._level, osg::LogFatal);
}

// What a field does when it marks its node.
void mark(Node& node)
{
    if (!node.isMarked())
        node.markParent(1);
    node.setFlags(Node::Marked);
}

TEST(Node, AncestorsKnowWhetherAnythingBelowIsMarked)
{
    const NodeType type("T");
    Node root(type);
    Node group(type);
    Node first(type);
    auto second = std::make_unique<Node>(type);
    group.setParent(&root);
    first.setParent(&group);
    second->setParent(&group);
    mark(first);
    mark(*second);
    mark(group);
    EXPECT_EQ(group.marksBelow(), 2);
    EXPECT_EQ(root.marksBelow(), 2); // the group itself, and that there is something below it
    first.clearMarks();
    first.clearMarks();
    EXPECT_EQ(root.marksBelow(), 2);
    second.reset();
    EXPECT_EQ(group.marksBelow(), 0);
    EXPECT_EQ(root.marksBelow(), 1);
    mark(first);
    group.setParent(nullptr);
    EXPECT_EQ(root.marksBelow(), 0);
    group.setParent(&root);
    EXPECT_EQ(root.marksBelow(), 2);
}

} // namespace
