#include "BridgeFixture.h"

#include "trovio/Node.h"
#include "trovio/NodeType.h"

namespace {

using Texts = std::vector<std::string>;

/// A node with one setting and one slot.
struct PlainNode : Trovio::Node {
    PlainNode() { addOutSlot("value", &_out); }
    Trovio::OutSlot<float> _out{"value"};
};

constexpr Trovio::Setting plainSettings[] = {Trovio::Setting::number("gain", "1", 0, 10, "a factor")};

class BridgeNodes : public Bridge {
protected:
    BridgeNodes()
    {
        Trovio::NodeType::add(
            {"Plain", "a test's node", plainSettings, [] { return std::unique_ptr<Trovio::Node>(new PlainNode); }});
    }
    void removeParameter(std::string name)
    {
        std::string ignored = "anything";
        _handler->removeParameter(name, ignored);
    }
    Trovio::Namespace* space(const std::string& label) { return Trovio::Root::get().getNamespace(label); }
};

} // namespace

TEST_F(BridgeNodes, EachHandlerHasANamespaceOfItsOwn)
{
    SensorManager& manager = *SensorManager::requestManager(_context);
    SensorHandler* const second = manager.addHandler("Trovio", "second", someURL());
    EXPECT_NE(space("Context"), nullptr);
    EXPECT_NE(space("Context2"), nullptr);
    EXPECT_FALSE(space("Context")->isDirty());
    addParameter(*second, "Plain", "");
    EXPECT_EQ(space("Context")->getNamespace("Plain"), nullptr);
    EXPECT_NE(space("Context2")->getNamespace("Plain"), nullptr);
    EXPECT_TRUE(manager.delHandler(second));
    EXPECT_EQ(space("Context2"), nullptr);
    EXPECT_NE(space("Context"), nullptr);
}

TEST_F(BridgeNodes, BadNodesAreWarningsThatNameThemAndChangeNothing)
{
    LogCapture log(2);
    addParameter(*_handler, "Plain", "gain=2");
    addParameter(*_handler, "NoSuchNode", "");
    addParameter(*_handler, "../etc/passwd", "");
    addParameter(*_handler, "Plain", "gain=11");
    addParameter(*_handler, "Plain", "volume=1");
    removeParameter("Unknown");
    std::vector<std::string> starts;
    for (const auto& entry : log.entries())
        if (entry._file == "sensorManager/TrovioSensorHandler" && entry._level == 2)
            starts.push_back(entry._text.substr(0, entry._text.find(',')));
    EXPECT_EQ(starts, (Texts{"Invalid Trovio Node NoSuchNode", "Invalid Trovio Node ../etc/passwd",
                             "Invalid Trovio field for node Plain", "Invalid Trovio field for node Plain",
                             "Invalid Trovio Namespace Unknown"}));
    EXPECT_EQ(space("Context")->inspect()._children.size(), 1U);

    removeParameter("Plain");
    EXPECT_EQ(space("Context")->inspect()._children.size(), 0U);
}

TEST_F(BridgeNodes, OperationsOnALostNamespaceDoNothing)
{
    LogCapture log(2);
    DirectSensor& sensor = add("SFFloat", "Speed");
    const auto lost = Trovio::Root::get().removeNamespace("Context");
    addParameter(*_handler, "Plain", "");
    addLabel(*_handler, "Plain/value", "Speed");
    add("SFFloat", "Late");
    EXPECT_EQ(_handler->getSlot(_sensors.back().get()), nullptr);
    EXPECT_NE(_handler->getSlot(&sensor), nullptr);
    EXPECT_EQ(log.texts(), Texts{});
}

TEST_F(BridgeNodes, SlotsLeaveTheNamespaceWithTheirSensor)
{
    LogCapture log(2);
    DirectSensor& sensor = add("SFFloat", "Speed");
    EXPECT_EQ(space("Context")->inspect()._slots.size(), 1U);
    EXPECT_EQ(Trovio::Root::get().inspect()._slots[0]._label, "Context/Speed");
    sensor.setContext(nullptr);
    EXPECT_EQ(space("Context")->inspect()._slots.size(), 0U);
    EXPECT_EQ(_handler->getSlot(&sensor), nullptr);
    EXPECT_EQ(log.texts(), (Texts{"Delete Trovio Slot\n"}));
    EXPECT_EQ(log.entries()[0]._level, 0);
}

TEST_F(BridgeNodes, TakenLabelPassesTheExceptionAndKeepsTheFirstSensor)
{
    DirectSensor& first = add("SFFloat", "Speed");
    const auto second = makeSensor("SFFloat", "Speed");
    EXPECT_THROW(_handler->regDISensor(second.get()), Trovio::Exception);
    EXPECT_NE(_handler->getSlot(&first), nullptr);
    EXPECT_EQ(_handler->getSlot(second.get()), nullptr);
}
