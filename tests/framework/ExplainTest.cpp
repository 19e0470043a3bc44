#include "tests/framework/TestNode.h"
#include "tests/support/LogCapture.h"
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
class Filter : public TestNode {
public:
    Filter(Events& events) : TestNode("filter", events), _rejected(addCounter("rejected"))
    {
        declareRelay();
        addInSlot("in", &_in);
        addOutSlot("out", &_out);
    }

    void pass(bool passes)
    {
        const auto record = _in.pop();
        if (passes)
            _out.push(record);
        else
            _rejected.add();
    }

private:
    Trovio::Counter& _rejected;
    InSlot<float> _in{"in"};
    OutSlot<float> _out{"out"};
};

/// device/out -> filter/in, filter/out -> sensor: a way on which nothing is wrong, so that each test breaks one thing.
class Explain : public ::testing::Test {
protected:
    Explain()
    {
        auto device = std::make_unique<TestNode>("device", _events);
        _device = device.get();
        _device->addOutSlot("out", &_out);
        auto filter = std::make_unique<Filter>(_events);
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

    void expect(Verdict verdict, std::vector<const char*> says, const std::string& from = "device/out",
                const std::string& to = "sensor") const
    {
        const auto answer = explain(from, to);
        EXPECT_EQ(answer._verdict, verdict) << answer._text;
        EXPECT_NE(answer._text.find(verdict == Verdict::Flowing ? "flow" : toString(verdict)), std::string::npos)
            << answer._text;
        for (const char* part : says)
            EXPECT_NE(answer._text.find(part), std::string::npos) << "'" << part << "' in: " << answer._text;
        EXPECT_EQ(answer._text.find('\n'), std::string::npos);
    }

    const LogCapture _log;
    TestNode::Events _events;
    OutSlot<float> _out{"out"};
    InSlot<float> _sensor{"sensor"};
    Namespace _scene;
    TestNode* _device = nullptr;
    Filter* _filter = nullptr;
};

TEST_F(Explain, SaysThatRecordsFlow)
{
    flow();
    flow();
    expect(Verdict::Flowing, {"'device/out' to 'sensor'", "2 written", "2 taken"});
    expect(Verdict::Flowing, {"'device/out'"}, "device/*");
    _device->setDegraded("one of two ports is taken");
    flow();
    expect(Verdict::Flowing, {"3 taken", "node 'device' has been degraded", "one of two ports"});
}

TEST_F(Explain, NamesTheLabelThatIsMissing)
{
    const struct {
        const char *_from, *_to, *_says;
        Verdict _verdict;
    } rows[] = {
        {"devise/out", "sensor", "no slot 'devise/out' is in scope; nearest: 'device/out'", Verdict::NoSuchLabel},
        {"out", "sensor", "nearest: 'device/out'", Verdict::NoSuchLabel},
        {"device/out", "Sensors", "no slot 'Sensors' is in scope; nearest: 'sensor'", Verdict::NoSuchLabel},
        {"entirely else", "sensor", "no slot 'entirely else' is in scope", Verdict::NoSuchLabel},
        {"devise/*", "sensor", "'devise/*' matches none of 2 out-slots in scope, such as 'device/out'",
         Verdict::NoMatch},
        {"sensor", "device/out", "'sensor' is an in-slot, but records come from an out-slot", Verdict::WrongDirection},
        {"device/out", "filter/out", "'filter/out' is an out-slot, but records go to an in-slot",
         Verdict::WrongDirection}};
    for (const auto& row : rows)
        expect(row._verdict, {row._says}, row._from, row._to);
    EXPECT_EQ(*explain("devise/out").findText("nearest"), "device/out");
    EXPECT_THROW(explain("device/out", "*"), Trovio::Exception);
}

TEST_F(Explain, NamesTheRouteThatLeadsNowhere)
{
    _scene.removeRoute("filter/*", "sensor");
    expect(Verdict::NoRoute, {"no route leads on from 'filter/out' (Float) to 'sensor' (Float)"});
    const struct {
        const char *_from, *_to;
        Verdict _verdict;
        const char* _says;
    } rows[] = {
        {"filter/out", "sensors", Verdict::NoSuchLabel, "leads to 'sensors', but no slot 'sensors' is in scope"},
        {"filtr/out", "sensor", Verdict::NoSuchLabel, "no slot 'filtr/out' is in scope; nearest: 'filter/out'"},
        {"filtr/*", "sensor", Verdict::NoMatch, "'filtr/*' matches none"},
        {"sensor", "filter/out", Verdict::WrongDirection, "leads the other way"},
        {"filter/in", "sensor", Verdict::WrongDirection, "'filter/in' is an in-slot"},
    };
    for (const auto& row : rows) {
        _scene.addRoute(row._from, row._to);
        expect(row._verdict, {row._says});
        _scene.removeRoute(row._from, row._to);
    }
}

TEST_F(Explain, NamesTypesThatDiffer)
{
    InSlot<double> wide("wide");
    _scene.addInSlot("wide", &wide);
    _scene.addRoute("filter/out", "wide");
    expect(Verdict::TypesDiffer, {"'filter/out' carries Float, 'wide' takes Double"}, "device/out", "wide");
    EXPECT_EQ(*explain("device/out", "wide").findText("in type"), "Double");
    _scene.removeSlot("wide");
}

TEST_F(Explain, NamesTheNamespaceThatShowsNothing)
{
    _device->removeExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    for (const char* label : {"device/out", "out"})
        expect(Verdict::NoExternalRoute, {"slot 'out' stands in 'device', but no external route of 'device' shows it"},
               label);
}

TEST_F(Explain, NamesTheLoopThatIsNotClosed)
{
    _scene.removeRoute("filter/*", "sensor");
    _scene.addRoute("filter/out", "late/in");
    _scene.addRoute("late/out", "filter/in");
    _scene.addNamespace("late", std::make_unique<Filter>(_events));
    const auto forward = explain("filter/out", "late/in"), back = explain("late/out", "filter/in");
    EXPECT_EQ((forward._verdict == Verdict::Loop) + (back._verdict == Verdict::Loop), 1) << forward._text << "\n"
                                                                                         << back._text;
}

TEST_F(Explain, FindsWhereTheRecordsStop)
{
    expect(Verdict::NeverWritten, {"nobody has written into 'device/out' yet"});
    _device->setDegraded("port 9000 is taken");
    expect(Verdict::NodeDegraded, {"node 'device' has been degraded for ", ": port 9000 is taken"});
    _device->setRunning();

    flow(100);
    expect(Verdict::Stale, {"the last of 1 records of 'device/out' is 100 s old"});
    EXPECT_EQ(_scene.explain("device/out", "sensor", 200)._verdict, Verdict::Flowing);

    push();
    expect(Verdict::Unread, {"the reader of 'filter/in' is 100 s behind: 1 waiting"});
    _filter->pass(false);
    expect(Verdict::Filtered, {"of 2 records that 'filter/in' took, 1 came out of 'filter/out', rejected 1"});
    _filter->setDegraded("ended: no memory");
    expect(Verdict::NodeDegraded, {"'filter'", "ended: no memory"});
    _filter->setRunning();
    flow();
    expect(Verdict::Flowing, {});
}

TEST_F(Explain, TellsReadersThatDoNotReadApart)
{
    const auto send = [this] {
        push();
        _filter->pass(true);
    };
    send();
    expect(Verdict::Unread, {"nobody has taken a record from 'sensor' yet: 1 waiting"});
    send();
    send();
    expect(Verdict::Overwritten, {"nobody has taken", "2 overwritten before they were read"});
    _sensor.interrupt();
    EXPECT_THROW(_sensor.pop(), Trovio::InterruptedException);
    expect(Verdict::Interrupted, {"the reader of 'sensor' was interrupted (1 times in all)", "1 waiting"});
    _sensor.pop();
    send();
    expect(Verdict::Flowing, {"1 taken, 2 overwritten"});
}

TEST_F(Explain, SeesThroughLevels)
{
    Namespace top;
    auto context = std::make_unique<Namespace>();
    context->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    auto device = std::make_unique<TestNode>("inner", _events);
    OutSlot<float> out("out");
    InSlot<float> in("in");
    device->addOutSlot("out", &out);
    context->addNamespace("device", std::move(device));
    context->addInSlot("sensor", &in);
    context->addRoute("devise/out", "sensor");
    Namespace& kept = *context;
    top.addNamespace("Context", std::move(context));
    const auto verdict = [&top] { return top.explain("Context/device/out", "Context/sensor"); };
    EXPECT_EQ(*verdict().findText("nearest"), "device/out") << verdict()._text;
    kept.addRoute("device/out", "sensor");
    out.push(Data<float>(1));
    in.pop();
    EXPECT_EQ(verdict()._verdict, Verdict::Flowing) << verdict()._text;
    const auto gone = top.removeNamespace("Context");
    EXPECT_EQ(gone->explain("device/out", "sensor")._verdict, Verdict::NoRoute);
    gone->removeSlot("sensor");
}

} // namespace
