#include "tests/framework/TestNode.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PassNode.h"
#include "tests/support/Says.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Exception.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include <gtest/gtest.h>

using Trovio::Data;
using Trovio::InSlot;
using Trovio::Namespace;
using Trovio::OutSlot;
using Trovio::Time;
using Trovio::Verdict;

namespace {

/// A filter whose thread is the test.
class Filter : public PassNode {
public:
    using Node::setDegraded;

    void pass(bool passes)
    {
        const auto record = _in.pop();
        if (passes)
            _out.push(record);
        else
            _rejected.add();
    }

private:
    Trovio::Counter& _rejected = addCounter("rejected");
};

/// Has no memory for any record.
struct FullSlot : InSlot<float> {
    using InSlot::InSlot;
    void push(const Data<float>&) override { Trovio::Hooks::notStored(*this); }
};

/// device/out -> filter/in, filter/out -> sensor: a way on which nothing is wrong, so that each test breaks one thing.
struct Way {
    Way()
    {
        auto device = std::make_unique<TestNode>("device", _events);
        _device = device.get();
        _device->addOutSlot("out", &_out);
        auto filter = std::make_unique<Filter>();
        _filter = filter.get();
        _scene.addNamespace("device", std::move(device));
        _scene.addNamespace("filter", std::move(filter));
        _scene.addInSlot("sensor", &_sensor);
        _scene.addRoute("device/out", "filter/in");
        _scene.addRoute("filter/*", "sensor");
    }

    void push(double age = 0) { _out.push(Data<float>(1, Time(Time::getCurrentTime().getSeconds() - age))); }

    /// Sends one record all the way.
    void flow(double age = 0)
    {
        push(age);
        _filter->pass(true);
        _sensor.pop();
    }

    Trovio::Explanation explain(const std::string& from = "device/out", const std::string& to = "sensor") const
    {
        return _scene.explain(from, to);
    }

    void expect(Verdict verdict, const std::vector<const char*>& parts, const std::string& from = "device/out",
                const std::string& to = "sensor") const
    {
        const auto answer = explain(from, to);
        EXPECT_EQ(answer._verdict, verdict) << answer._text;
        EXPECT_TRUE(says(answer._text, verdict == Verdict::Flowing ? "flow" : toString(verdict)));
        EXPECT_TRUE(saysAll(answer._text, parts));
        EXPECT_FALSE(says(answer._text, "\n"));
    }

    /// Another filter in place of the one there is.
    void replaceFilter()
    {
        _scene.removeNamespace("filter");
        auto filter = std::make_unique<Filter>();
        _filter = filter.get();
        _scene.addNamespace("filter", std::move(filter));
    }

    void replaceRoute(const char* from, const char* to)
    {
        _scene.removeRoute("filter/*", "sensor");
        _scene.addRoute(from, to);
    }

    /// Later records are stamped five seconds later.
    void sendLater(bool passes)
    {
        push(-5);
        _filter->pass(passes);
    }

    void sendUnstamped()
    {
        _out.push(Data<float>(1, Time(0)));
        _filter->pass(true);
    }

    const LogCapture _log;
    TestNode::Events _events;
    OutSlot<float> _out{"out"}, _silent{"silent"};
    InSlot<float> _sensor{"sensor"};
    InSlot<double> _wide{"wide"};
    FullSlot _full{"full"};
    Namespace _scene;
    TestNode* _device = nullptr;
    Filter* _filter = nullptr;
};

class Explain : public ::testing::Test, public Way {};

/// One thing that goes wrong on a way on which records flow.
const struct {
    const char* _name;
    void (*_inject)(Way& way);
    Verdict _verdict;
    const char* _says;
} faults[] = {
    {"NoSuchLabel", [](Way& way) { way.replaceRoute("filter/out", "senzor"); }, Verdict::NoSuchLabel,
     "'senzor': no slot has the label 'senzor'; did you mean 'sensor'?"},
    {"NoMatch", [](Way& way) { way.replaceRoute("filtr/*", "sensor"); }, Verdict::NoMatch,
     "pattern 'filtr/*' matches none of 2 out-slots, such as 'device/out'"},
    {"WrongDirection", [](Way& way) { way.replaceRoute("sensor", "filter/out"); }, Verdict::WrongDirection,
     "route 'sensor' -> 'filter/out' leads the other way"},
    {"TypesDiffer",
     [](Way& way) {
         way._scene.removeSlot("sensor");
         way._scene.addInSlot("sensor", &way._wide);
     },
     Verdict::TypesDiffer, "'filter/out' carries Float, 'sensor' takes Double"},
    {"NoExternalRoute", [](Way& way) { way._device->removeExternalRoute("*", "{NamespaceLabel}/{SlotLabel}"); },
     Verdict::NoExternalRoute, "slot 'out' stands in 'device', but no external route of 'device' shows it"},
    {"NoRoute", [](Way& way) { way._scene.removeRoute("filter/*", "sensor"); }, Verdict::NoRoute,
     "no route leads on from 'filter/out' (Float) to 'sensor' (Float)"},
    {"NodeDegraded", [](Way& way) { way._device->setDegraded("port 9000 is taken"); }, Verdict::NodeDegraded,
     ": port 9000 is taken"},
    {"NeverWritten",
     [](Way& way) {
         way._device->removeSlot("out");
         way._device->addOutSlot("out", &way._silent);
     },
     Verdict::NeverWritten, "nobody has written into 'device/out' yet"},
    {"Stale", [](Way& way) { way.flow(100); }, Verdict::Stale, "the last of 2 records of 'device/out' is 100 s old"},
    {"StaleByAWrongClock",
     [](Way& way) {
         way.flow(100);
         way._device->_remarks = {{"in", "no"}, {"out", "its source's clock is 100 s behind"}};
     },
     Verdict::Stale, " 100 s old; its source's clock is 100 s behind"},
    {"Filtered",
     [](Way& way) {
         way.replaceFilter();
         way._filter->pass(false);
     },
     Verdict::Filtered, "of 1 records that 'filter/in' took, 0 came out of 'filter/out', rejected 1"},
    {"FilteredLater", [](Way& way) { way.sendLater(false); }, Verdict::Filtered,
     "of 2 records that 'filter/in' took, 1 came out"},
    {"FilterDegraded",
     [](Way& way) {
         way.sendLater(false);
         way._filter->setDegraded("ended: no memory");
     },
     Verdict::NodeDegraded, "node 'filter' has been degraded for"},
    {"Overwritten",
     [](Way& way) {
         for (int i = 0; i < 3; ++i)
             way.sendLater(true);
     },
     Verdict::Overwritten, " s behind: 2 overwritten before they were read"},
    {"Unread", [](Way& way) { way.sendLater(true); }, Verdict::Unread, " s behind: 1 waiting"},
    {"DegradedReader",
     [](Way& way) {
         way.replaceFilter();
         way.push();
         way._filter->setDegraded("no such host");
     },
     Verdict::NodeDegraded, ": no such host"},
    {"OverwrittenWithoutStamps",
     [](Way& way) {
         for (int i = 0; i < 60; ++i) {
             way.sendUnstamped();
             if (i < 30)
                 way._sensor.pop();
         }
     },
     Verdict::Overwritten, "the reader of 'sensor' takes nothing more: 29 overwritten"},
    {"CutShort", [](Way& way) { Trovio::Hooks::cutShort(way._sensor); }, Verdict::Flowing,
     "; frames that left records of 'sensor' to the next: 1; a larger buffer or a slower source helps"},
    {"NotStored",
     [](Way& way) {
         way._scene.removeSlot("sensor");
         way._scene.addInSlot("sensor", &way._full);
     },
     Verdict::NotStored, "nothing has been stored in 'sensor'; records not stored in 'sensor' for want of memory: 1;"},
    {"Interrupted",
     [](Way& way) {
         way._sensor.interrupt();
         EXPECT_THROW(way._sensor.pop(), Trovio::InterruptedException);
         way.sendLater(true);
     },
     Verdict::Interrupted, "the reader of 'sensor' was interrupted (1 times in all)"},
    {"RouteFromNowhere", [](Way& way) { way.replaceRoute("filtr/out", "sensor"); }, Verdict::NoSuchLabel,
     "no slot has the label 'filtr/out'; did you mean 'filter/out'?"},
    {"RouteFromAnInSlot", [](Way& way) { way.replaceRoute("filter/in", "sensor"); }, Verdict::WrongDirection,
     "'filter/in' is an in-slot"}};

TEST(OneFault, IsNamed)
{
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault._name);
        Way way;
        way.flow();
        way.expect(Verdict::Flowing, {});
        fault._inject(way);
        way.expect(fault._verdict, {fault._says});
    }
}

TEST_F(Explain, SaysThatRecordsFlow)
{
    flow();
    flow();
    expect(Verdict::Flowing, {"'device/out' to 'sensor'", "2 written", "2 taken"});
    expect(Verdict::Flowing, {"'device/out'"}, "device/*");
    EXPECT_EQ(explain()._passes, (std::vector<std::string>{"device/out", "filter/in", "filter/out", "sensor"}));
    _device->setDegraded("one of two ports is taken");
    flow();
    expect(Verdict::Flowing, {"3 taken", "node 'device' has been degraded", "one of two ports"});
    flow(-3600);
    expect(Verdict::Flowing, {"4 taken", "the last stamped 3.6e+03 s in the future"});
}

TEST_F(Explain, FindsNoFaultInTheAgeOfWhatIsWrittenOnChange)
{
    _device->removeSlot("out");
    _silent.setWrittenOnChange();
    _device->addOutSlot("out", &_silent);
    expect(Verdict::NeverWritten, {});
    _silent.push(Data<float>(1, Time(Time::getCurrentTime().getSeconds() - 100)));
    flow(100); // the test's own out-slot leads nowhere now, and the filter takes what came from the silent one
    expect(Verdict::Flowing, {"100 s old"});
}

TEST_F(Explain, NamesTheLabelThatIsMissing)
{
    const struct {
        const char *_from, *_to, *_says;
        Verdict _verdict;
    } rows[] = {
        {"devise/out", "sensor", "no slot has the label 'devise/out'; did you mean 'device/out'?",
         Verdict::NoSuchLabel},
        {"out", "sensor", "did you mean 'device/out'?", Verdict::NoSuchLabel},
        {"devise/out", "Sensors", "did you mean 'device/out'? no slot has the label 'Sensors'; did you mean 'sensor'?",
         Verdict::NoSuchLabel},
        {"device/out", "Sensors", "no slot has the label 'Sensors'; did you mean 'sensor'?", Verdict::NoSuchLabel},
        {"entirely else", "sensor", "no slot has the label 'entirely else'", Verdict::NoSuchLabel},
        {"devise/*", "sensor", "'devise/*' matches none of 2 out-slots, such as 'device/out'", Verdict::NoMatch},
        {"sensor", "device/out", "'sensor' is an in-slot, but records come from an out-slot", Verdict::WrongDirection},
        {"device/out", "filter/out", "'filter/out' is an out-slot, but records go to an in-slot",
         Verdict::WrongDirection}};
    for (const auto& row : rows)
        expect(row._verdict, {row._says}, row._from, row._to);
    EXPECT_EQ(*explain("devise/out").findText("nearest"), "device/out");
    EXPECT_THROW(explain("device/out", "*"), Trovio::Exception);
}

/// A tap on the device's out-slot, and a tool that writes into the sensor.
struct Tools {
    explicit Tools(Namespace& scene) : _scene(scene)
    {
        auto space = std::make_unique<Namespace>();
        space->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        space->addInSlot("device/out", &_tap);
        space->addOutSlot("sensor", &_pen);
        scene.addNamespace("@watch", std::move(space));
        scene.addRoute("*", "@watch/*");
        scene.addRoute("@watch/sensor", "sensor");
    }
    ~Tools() { _scene.removeNamespace("@watch"); }
    Tools(const Tools&) = delete;
    Tools& operator=(const Tools&) = delete;

    Namespace& _scene;
    InSlot<float> _tap{"tap"};
    OutSlot<float> _pen{"pen"};
};

TEST_F(Explain, PassesOverWhatBelongsToTools)
{
    const auto isActive = [this] { return _scene.inspect()._children.at(0)._slots.at(0)._active; };
    flow();
    InSlot<float> other("other");
    _scene.addInSlot("other", &other);
    for (const char* from : {"*/sensor", "*/device/*"}) // which nobody else has
        _scene.addRoute(from, "other");
    _scene.setDirty(false);
    Tools tools(_scene);
    EXPECT_EQ(tools._tap.getCounts().stored, 1U);
    tools._pen.push(Data<float>(1, Time(1e9)));
    EXPECT_FALSE(_sensor.empty());
    EXPECT_TRUE(other.empty());
    EXPECT_FALSE(_scene.isDirty());
    const Trovio::NamespaceInfo info = _scene.inspect();
    EXPECT_EQ(info._children.size(), 2U);
    ASSERT_EQ(info._routes.size(), 4U);
    for (const std::size_t i : {2U, 3U})
        EXPECT_EQ(info._routes[i]._reason, "no slot has the label '" + info._routes[i]._from + "'");
    EXPECT_EQ(info._slots.size(), 5U);
    EXPECT_EQ(explain()._text.find('@'), std::string::npos) << explain()._text;
    expect(Verdict::NoMatch, {"none of 2 out-slots"}, "devise/*");
    EXPECT_TRUE(isActive());
    _scene.removeRoute("device/out", "filter/in");
    EXPECT_TRUE(_out.isActive());
    EXPECT_FALSE(isActive());
    expect(Verdict::NoRoute, {"no route leads on from 'device/out' (Float) to 'sensor' (Float)"});
    const auto found = _scene.findSlots("device/out");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]._out->_written, 1U);
    _scene.removeSlot("other");
}

TEST_F(Explain, CountsSinceTheScenesStart)
{
    expect(Verdict::NeverWritten, {});
    _device->setDegraded("no such host");
    expect(Verdict::NodeDegraded, {"node 'device' has been degraded for ", ": no such host"});
    push();
    expect(Verdict::Unread, {"nobody has taken a record from 'filter/in' yet: 1 waiting"});
    push();
    push();
    expect(Verdict::Overwritten, {"nobody has taken", "2 overwritten"});
    EXPECT_EQ(_scene.explain("device/out", "filter/in", 1e9)._verdict, Verdict::Overwritten);
}

} // namespace
