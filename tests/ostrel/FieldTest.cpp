#include "ostrel/Field.h"

#include "ostrel/FieldTypes.h"
#include "tests/ostrel/Recorder.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include <deque>
#include <gtest/gtest.h>
#include <memory>

using namespace Ostrel;

namespace {

using Texts = std::vector<std::string>;
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
    int _state, _access;
    std::uint32_t _flags;
    CallerType _caller;
    bool _takes, _marked;
    const char* _calls;
};

TEST(Field, ChangeMarksAsksAndSendsByAccessStateAndCaller)
{
    for (const Change& row : {Change{"setting", 2, 1, 0, CallerOutside, true, true, "send(5,links) "},
                              Change{"setting is not asked", 3, 1, 0, CallerOutside, false, true, "send(5,links) "},
                              Change{"event out", 3, 4, 0, CallerOutside, true, true, "send(5,links) "},
                              Change{"event in", 2, 2, 0, CallerOutside, true, true, "receive send(5,links) "},
                              Change{"event in, refused", 2, 2, 8, CallerNode, false, true, "receive "},
                              Change{"exposed", 2, 7, 0, CallerOutside, true, true, "receive "},
                              Change{"exposed, by its node", 2, 7, 0, CallerNode, true, true, "receive send(5,links) "},
                              Change{"exposed, forwards", 2, 7, 8, CallerOutside, true, true, "receive send(5,links) "},
                              Change{"exposed, refused", 2, 7, 8, CallerNode, false, true, "receive "},
                              Change{"no known access", 2, 3, 8, CallerNode, true, false, ""},
                              Change{"not running", 0, 7, 0, CallerOutside, false, true, "send(0,links,initial) "},
                              Change{"later state", 4, 2, 0, CallerOutside, false, true, "send(0,links,initial) "}}) {
        SCOPED_TRACE(row._name);
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
}

TEST(Field, WithoutDescriptionOnlyItsMarkSends)
{
    const LogCapture capture;
    Watched field;
    field.processValueChange(5.0, CallerOutside);
    EXPECT_EQ(field._calls, "");
    EXPECT_TRUE(capture.entries().empty());
    field.markChanged();
    EXPECT_EQ(field._calls, "send(0,links,initial) ");
    EXPECT_EQ(capture.texts(), Texts{"Field without desc in XField::markChanged()\n"});
    EXPECT_EQ(capture.entries().at(0)._level, 4);
}

TEST(Field, TracedNodeLogsEachChange)
{
    const LogCapture capture(osg::LogAlways);
    Owner owner;
    owner.change(1.0F);
    owner._node.setTraced(true);
    owner.change(1.0F);
    owner._node.setName("");
    owner.change(1.0F);
    EXPECT_EQ(capture.texts(), (Texts{"Thing/thing.value: processValueChange()\n",
                                      "Thing/" + owner._node.getIDStr() + ".value: processValueChange()\n"}));
    EXPECT_EQ(capture.entries()[0]._file, "Ostrel/Field");
    EXPECT_EQ(capture.entries()[0]._level, 0);
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
        EXPECT_EQ(capture.texts(),
                  flags ? Texts{"Thing/thing.value: processValueChange() && _isChangingMask set\n"} : Texts{});
    }
}

class FieldLink : public ::testing::Test {
protected:
    const LogCapture _log;
    Owner _a, _b, _c;
};

TEST_F(FieldLink, EveryValueOfAFrameTravels)
{
    ASSERT_TRUE(_a._field.linkTo(_b._field));
    ASSERT_TRUE(_b._field.linkTo(_c._field));
    std::vector<float> seen;
    Owner& last = _c;
    Recorder listener([&seen, &last](auto* node) {
        EXPECT_EQ(node, &last._node);
        seen.push_back(last._field.value());
    });
    _c._field.getSendSubject().attach(listener);
    for (const float value : {1.0F, 2.0F, 3.0F})
        _a.change(value);
    EXPECT_EQ(seen, (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(listener._times, (std::vector<double>{5, 5, 5}));
    EXPECT_TRUE(_a._field.unlinkFrom(_b._field));
    EXPECT_FALSE(_a._field.unlinkFrom(_b._field));
    _a.change(4.0F);
    EXPECT_EQ(_c._field.value(), 3.0F);
}

TEST_F(FieldLink, LoopsEnd)
{
    _a._field.linkTo(_b._field);
    _b._field.linkTo(_c._field);
    _c._field.linkTo(_a._field);
    float value = 0;
    for (Owner* owner : {&_b, &_c, &_a})
        owner->change(++value);
    EXPECT_EQ(_a._field.value(), 3.0F);
    EXPECT_EQ(_c._field.value(), 3.0F);
    EXPECT_EQ(_c._field._calls, "receive send(5,links) receive send(5,links) receive send(5,links) ");
    EXPECT_TRUE(_log.entries().empty());
}

TEST_F(FieldLink, RefusesWhatCannotBeLinked)
{
    SFDouble other;
    _a._field.linkTo(_b._field);
    for (Field* target :
         {static_cast<Field*>(&other), static_cast<Field*>(&_a._field), static_cast<Field*>(&_b._field)})
        EXPECT_FALSE(_a._field.linkTo(*target));
    ASSERT_EQ(_log.entries().size(), 3U);
    EXPECT_EQ(_log.texts()[0],
              "thing.value (SFFloat) is not linked to a field without node (SFDouble): both must be of one class\n");
}

TEST_F(FieldLink, FieldsMayEndAndLinksChangeWhileSending)
{
    auto victim = std::make_unique<Owner>();
    victim->_field.linkTo(_b._field); // ends before it is sent along
    Recorder listener([&](auto*) {
        victim.reset();
        _a._field.unlinkFrom(_b._field);
        _a._field.linkTo(_c._field);
    });
    Owner stays;
    stays._field.getSendSubject().attach(listener);
    for (Owner* target : {&stays, victim.get(), &_b})
        _a._field.linkTo(target->_field);
    _a.change(1.0F);
    EXPECT_EQ(_b._field._calls, "");
    EXPECT_EQ(_c._field.value(), 1.0F);

    auto dying = std::make_unique<Owner>();
    dying->_field.linkTo(stays._field);
    listener._action = [&dying](auto*) { dying.reset(); };
    dying->_field.value() = 7.0F;
    dying->_field.send(1.0, true, false);
    EXPECT_EQ(stays._field.value(), 7.0F);
}

// One warning for each change, however far it would go.
TEST_F(FieldLink, LongChainsAndManyWaysAreCutOff)
{
    std::deque<Owner> chain(Field::maxDepth + 2), web(9); // web: each linked to each, more than 8! ways
    for (std::size_t i = 1; i < chain.size(); ++i)
        chain[i - 1]._field.linkTo(chain[i]._field);
    for (std::size_t i = 0; i < 9 * 9; ++i)
        if (i / 9 != i % 9)
            web[i / 9]._field.linkTo(web[i % 9]._field);
    std::size_t warnings = 0;
    for (Owner* owner : {&chain[0], &chain[0], &web[0], &web[0]}) {
        owner->change(1.0F);
        ASSERT_EQ(_log.entries().size(), ++warnings);
        EXPECT_TRUE(says(_log.texts().back(), "use fewer links"));
    }
    EXPECT_NE(chain[Field::maxDepth]._field._calls, "");
    EXPECT_EQ(chain.back()._field._calls, "");
}

} // namespace
