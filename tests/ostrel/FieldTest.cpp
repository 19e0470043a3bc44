#include "ostrel/Field.h"

#include "ostrel/FieldTypes.h"
#include "tests/support/LogCapture.h"
#include "tests/ostrel/Recorder.h"
#include <deque>
#include <gtest/gtest.h>
#include <memory>

using namespace Ostrel;

namespace {

const NodeType nodeType("Thing");

/// A field that remembers what it was asked.
class Watched : public SFFloat {
public:
    void send(const TimeStamp& time, bool alongLinks, bool initial) override
    {
        _calls += "send(" + std::to_string(static_cast<int>(time)) + (alongLinks ? ",links" : "") +
                  (initial ? ",initial) " : ") ");
        SFFloat::send(time, alongLinks, initial);
    }
    bool receive(const TimeStamp&) override
    {
        _calls += "receive ";
        return _takes;
    }
    std::string _calls;
    bool _takes = true;
};

/// A node with one field.
struct Owner {
    explicit Owner(FieldAccess access = FieldAccess::Exposed, std::uint32_t flags = FieldDescription::Forwards)
        : _description{"value", 2, flags, access}, _node(nodeType)
    {
        _node.setName("thing");
        _node.setState(NodeState::Active);
        _field.setOwner(&_node, &_description);
    }
    void change(float value, const TimeStamp& time = 5.0)
    {
        _field.value() = value;
        _field.processValueChange(time, CallerOutside);
    }

    FieldDescription _description;
    Node _node;
    Watched _field;
};

struct Change {
    const char* _name;
    int _state;
    int _access;
    std::uint32_t _flags;
    CallerType _caller;
    bool _takes;
    bool _marked;
    const char* _calls;
};

class FieldChange : public ::testing::TestWithParam<Change> {};

TEST_P(FieldChange, MarksAsksAndSends)
{
    const Change& row = GetParam();
    Node parent(nodeType);
    Owner owner(static_cast<FieldAccess>(row._access), row._flags);
    owner._node.setParent(&parent);
    owner._node.setState(static_cast<NodeState>(row._state));
    owner._field._takes = row._takes;
    for (int i = 0; i < 2; ++i) {
        owner._field._calls.clear();
        owner._field.processValueChange(5.0, row._caller);
        EXPECT_EQ(owner._field._calls, row._calls);
        EXPECT_EQ(owner._node.changeMask(), row._marked ? 2U : 0U);
        EXPECT_EQ(owner._node.flags(), row._marked ? 4U : 0U);
        EXPECT_EQ(parent.marksBelow(), row._marked ? 1 : 0); // counted once
    }
}

INSTANTIATE_TEST_SUITE_P(
    Access, FieldChange,
    ::testing::Values(Change{"Setting", 2, 1, 0, CallerOutside, true, true, "send(5,links) "},
                      Change{"SettingIsNotAsked", 3, 1, 0, CallerOutside, false, true, "send(5,links) "},
                      Change{"EventOut", 3, 4, 0, CallerOutside, true, true, "send(5,links) "},
                      Change{"EventIn", 2, 2, 0, CallerOutside, true, true, "receive send(5,links) "},
                      Change{"EventInRefused", 2, 2, 8, CallerNode, false, true, "receive "},
                      Change{"Exposed", 2, 7, 0, CallerOutside, true, true, "receive "},
                      Change{"ExposedByItsNode", 2, 7, 0, CallerNode, true, true, "receive send(5,links) "},
                      Change{"ExposedForwards", 2, 7, 8, CallerOutside, true, true, "receive send(5,links) "},
                      Change{"ExposedRefused", 2, 7, 8, CallerNode, false, true, "receive "},
                      Change{"NoKnownAccess", 2, 3, 8, CallerNode, true, false, ""},
                      Change{"NotRunning", 0, 7, 0, CallerOutside, false, true, "send(0,links,initial) "},
                      Change{"LaterState", 4, 2, 0, CallerOutside, false, true, "send(0,links,initial) "}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(Field, WithoutDescriptionOnlyItsMarkSends)
{
    const LogCapture capture;
    Watched field;
    field.processValueChange(5.0, CallerOutside);
    EXPECT_EQ(field._calls, "");
    EXPECT_TRUE(capture.entries().empty());
    field.markChanged();
    EXPECT_EQ(field._calls, "send(0,links,initial) ");
    ASSERT_EQ(capture.entries().size(), 1U);
    EXPECT_EQ(capture.entries()[0]._text, "Field without desc in XField::markChanged()\n");
    EXPECT_EQ(capture.entries()[0]._level, 4);
}

TEST(Field, TracedNodeLogsEachChange)
{
    const LogCapture capture(osg::LogAlways);
    Owner owner;
    owner.change(1.0F);
    EXPECT_TRUE(capture.entries().empty());
    owner._node.setTraced(true);
    owner.change(1.0F);
    owner._node.setName("");
    owner.change(1.0F);
    ASSERT_EQ(capture.entries().size(), 2U);
    const auto entry = capture.entries()[0];
    EXPECT_EQ(entry._text, "Thing/thing.value: processValueChange()\n");
    EXPECT_EQ(entry._file, "Ostrel/Field");
    EXPECT_EQ(entry._module, "Ostrel");
    EXPECT_EQ(entry._level, 0);
    EXPECT_NE(entry._function.find("Field::processValueChange("), std::string::npos);
    EXPECT_EQ(capture.entries()[1]._text, "Thing/" + owner._node.getIDStr() + ".value: processValueChange()\n");
}

TEST(Field, ChangeDuringItsOwnSendingIsReportedIfItForwards)
{
    for (const std::uint32_t flags : {0U, FieldDescription::Forwards}) {
        const LogCapture capture;
        Owner owner(FieldAccess::EventOut, flags);
        Recorder listener([&owner](auto*) { owner.change(2.0F); });
        owner._field.getSendSubject().attach(listener);
        owner.change(1.0F);
        EXPECT_EQ(listener.count(), 1U);
        EXPECT_EQ(owner._node.isChangingMask(), 0U);
        ASSERT_EQ(capture.entries().size(), flags ? 1U : 0U);
        if (flags) {
            EXPECT_EQ(capture.texts()[0], "Thing/thing.value: processValueChange() && _isChangingMask set\n");
        }
    }
}

TEST(FieldLink, EveryValueOfAFrameTravels)
{
    Owner a, b, c;
    ASSERT_TRUE(a._field.linkTo(b._field));
    ASSERT_TRUE(b._field.linkTo(c._field));
    std::vector<float> seen;
    Recorder listener([&](auto* node) {
        EXPECT_EQ(node, &c._node);
        seen.push_back(c._field.value());
    });
    c._field.getSendSubject().attach(listener);
    for (const float value : {1.0F, 2.0F, 3.0F})
        a.change(value);
    EXPECT_EQ(seen, (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(listener._times, (std::vector<double>{5, 5, 5}));
    EXPECT_TRUE(a._field.unlinkFrom(b._field));
    EXPECT_FALSE(a._field.unlinkFrom(b._field));
    a.change(4.0F);
    EXPECT_EQ(c._field.value(), 3.0F);
}

TEST(FieldLink, LoopsEnd)
{
    const LogCapture capture;
    Owner a, b, c;
    a._field.linkTo(b._field);
    b._field.linkTo(c._field);
    c._field.linkTo(a._field);
    for (Owner* owner : {&b, &c, &a})
        owner->change(static_cast<float>(owner->_field._calls.size()));
    EXPECT_EQ(a._field.value(), b._field.value());
    EXPECT_EQ(a._field.value(), c._field.value());
    EXPECT_EQ(c._field._calls, "receive send(5,links) receive send(5,links) receive send(5,links) ");
    EXPECT_TRUE(capture.entries().empty());
}

TEST(FieldLink, InitialValueIsTakenUnasked)
{
    Owner a, b;
    a._field.linkTo(b._field);
    a._node.setState(NodeState::Created);
    a.change(4.0F);
    EXPECT_EQ(b._field.value(), 4.0F);
    EXPECT_EQ(b._field._calls, "send(0,links,initial) ");
    EXPECT_TRUE(b._node.isMarked());
}

TEST(FieldLink, RefusesWhatCannotBeLinked)
{
    const LogCapture capture;
    Owner a, b;
    SFDouble other;
    a._field.linkTo(b._field);
    EXPECT_FALSE(a._field.linkTo(other));
    EXPECT_FALSE(a._field.linkTo(a._field));
    EXPECT_FALSE(a._field.linkTo(b._field));
    ASSERT_EQ(capture.entries().size(), 3U);
    EXPECT_EQ(capture.texts()[0],
              "thing.value (SFFloat) is not linked to a field without node (SFDouble): both must be of one class\n");
    a.change(1.0F);
    EXPECT_EQ(other.value(), 0.0);
}

TEST(FieldLink, EndsWithEitherField)
{
    Owner first, last;
    auto middle = std::make_unique<Owner>();
    first._field.linkTo(middle->_field);
    middle->_field.linkTo(last._field);
    middle.reset();
    first.change(1.0F);
    EXPECT_EQ(last._field._calls, "");
}

TEST(FieldLink, FieldsMayEndAndLinksChangeWhileSending)
{
    Owner source, gone, stays, late;
    auto victim = std::make_unique<Owner>();
    Recorder listener([&](auto*) {
        victim.reset();
        source._field.unlinkFrom(gone._field);
        source._field.linkTo(late._field);
    });
    stays._field.getSendSubject().attach(listener);
    for (Owner* target : {&stays, victim.get(), &gone})
        source._field.linkTo(target->_field);
    source.change(1.0F);
    EXPECT_EQ(gone._field._calls, "");
    EXPECT_EQ(late._field.value(), 1.0F);

    auto dying = std::make_unique<Owner>();
    dying->_field.linkTo(stays._field);
    listener._action = [&dying](auto*) { dying.reset(); };
    dying->_field.value() = 7.0F;
    dying->_field.send(1.0, true, false);
    EXPECT_EQ(stays._field.value(), 7.0F);
}

TEST(FieldLink, ExceptionLeavesTheFieldUsable)
{
    Owner a;
    Recorder listener([](auto*) { throw std::runtime_error("no"); });
    a._field.getSendSubject().attach(listener);
    EXPECT_THROW(a.change(1.0F), std::runtime_error);
    EXPECT_EQ(a._node.isChangingMask(), 0U);
    listener._action = {};
    a.change(2.0F);
    EXPECT_EQ(listener.count(), 2U);
}

/// Changes the first field and expects that the change was cut off, and that only one warning says so.
void expectBounded(std::deque<Owner>& owners)
{
    const LogCapture capture;
    for (int i = 0; i < 2; ++i) {
        owners.front().change(static_cast<float>(i));
        ASSERT_EQ(capture.entries().size(), static_cast<std::size_t>(i + 1));
        EXPECT_NE(capture.texts().back().find("use fewer links"), std::string::npos);
    }
}

TEST(FieldLink, LongChainIsCutOff)
{
    std::deque<Owner> owners(Field::maxDepth + 2);
    for (std::size_t i = 1; i < owners.size(); ++i)
        owners[i - 1]._field.linkTo(owners[i]._field);
    expectBounded(owners);
    EXPECT_NE(owners[Field::maxDepth]._field._calls, "");
    EXPECT_EQ(owners.back()._field._calls, "");
}

TEST(FieldLink, ManyWaysAreCutOff)
{
    std::deque<Owner> owners(9); // each linked to each: more than 8! ways
    for (Owner& from : owners)
        for (Owner& to : owners)
            if (&from != &to)
                from._field.linkTo(to._field);
    expectBounded(owners);
}

} // namespace
