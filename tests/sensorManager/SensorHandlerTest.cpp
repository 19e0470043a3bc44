#include "ProbeHandler.h"

#include "ostrel/DirectSensorProc.h"
#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

class Handler : public ::testing::Test {
protected:
    Handler() { ProbeHandler::takeEvents(); }

    const std::unique_ptr<DirectSensor> _sensor = makeSensor("SFFloat", "served");
    Subject& _subject = _sensor->getDirectSensorProc()->getUpdateSubject();
};

} // namespace

TEST_F(Handler, BindsOnceAndAsksADeclinedSensorAgain)
{
    const auto declined = makeSensor("SFFloat", "not-served");
    ProbeHandler handler("h");
    for (DirectSensor* sensor : {_sensor.get(), _sensor.get(), declined.get(), declined.get()})
        handler.regDISensor(sensor);
    handler.regDISensor(nullptr);
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in served", "in not-served", "in not-served"}));
    handler.unregDISensor(declined.get());
    handler.unregDISensor(nullptr);
    ProbeHandler(handler).unregDISensor(_sensor.get()); // a copy serves nobody
    EXPECT_EQ(ProbeHandler::takeEvents(), Texts{});
    handler.unregDISensor(_sensor.get());
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"deleted"}));
    _subject.notify(1.0);
    EXPECT_EQ(ProbeHandler::takeEvents(), Texts{}) << "a deleted observer is detached";
}

TEST_F(Handler, ReadsTheOutputFlagAtEachNotification)
{
    {
        ProbeHandler handler("h");
        handler.regDISensor(_sensor.get());
        _subject.notify(1.0);
        _sensor->setOutput(true);
        _subject.notify(2.0);
    }
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in served", "update 1", "output 2", "deleted"}));
}

TEST(HandlerType, EarliestOfEqualKeysIsFoundAndACopyIsInert)
{
    const LogCapture log(1);
    auto first = std::make_unique<SensorHandlerType>("Twice", nullptr);
    SensorHandlerType second("Twice", &ProbeHandler::create);
    EXPECT_EQ(SensorHandlerType::find("Twice"), first.get());
    EXPECT_EQ(first->createHandler("x", someURL()), nullptr) << "no factory";
    first.reset();
    EXPECT_EQ(SensorHandlerType::find("Twice"), &second);
    EXPECT_EQ(SensorHandlerType::find("twice"), nullptr);

    SensorHandlerType copy(second);
    EXPECT_EQ(log.texts(), (Texts{"Running SensorHanderType copy constructor\n"}));
    EXPECT_EQ(log.entries()[0]._file, "sensorManager/SensorHandlerType");
    EXPECT_EQ(copy.createHandler("x", someURL()), nullptr);
    EXPECT_EQ(SensorHandlerType::find(""), nullptr);
}
