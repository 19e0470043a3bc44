#include "ProbeHandler.h"

#include "ostrel/DirectSensorProc.h"
#include <gtest/gtest.h>

namespace {
using Texts = std::vector<std::string>;
}

TEST(Handler, BindsOnceAndAsksADeclinedSensorAgain)
{
    ProbeHandler::takeEvents();
    const auto served = makeSensor("SFFloat", "served");
    const auto declined = makeSensor("SFFloat", "not-served");
    ProbeHandler handler("h");
    for (int i = 0; i < 2; ++i) {
        handler.regDISensor(served.get());
        handler.regDISensor(declined.get());
    }
    handler.regDISensor(nullptr);
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in served", "in not-served", "in not-served"}));
    handler.unregDISensor(declined.get());
    handler.unregDISensor(nullptr);
    EXPECT_EQ(ProbeHandler::takeEvents(), Texts{});
    handler.unregDISensor(served.get());
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"deleted"}));
    served->getDirectSensorProc()->getUpdateSubject().notify(1.0);
    EXPECT_EQ(ProbeHandler::takeEvents(), Texts{}) << "a deleted observer is detached";
}

TEST(Handler, ReadsTheOutputFlagAtEachNotification)
{
    ProbeHandler::takeEvents();
    const auto sensor = makeSensor("SFFloat", "s");
    {
        ProbeHandler handler("h");
        handler.regDISensor(sensor.get());
        Subject& subject = sensor->getDirectSensorProc()->getUpdateSubject();
        subject.notify(1.0);
        sensor->setOutput(true);
        subject.notify(2.0);
        sensor->setOutput(false);
        subject.notify(3.0);
    }
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in s", "update 1", "output 2", "update 3", "deleted"}));
}

TEST(Handler, CopyHasNoNameAndServesNobody)
{
    ProbeHandler::takeEvents();
    const auto sensor = makeSensor("SFFloat", "s");
    ProbeHandler handler("h");
    handler.regDISensor(sensor.get());
    {
        ProbeHandler copy(handler);
        EXPECT_EQ(copy.getName(), "");
        copy.unregDISensor(sensor.get());
    }
    EXPECT_EQ(ProbeHandler::takeEvents(), (Texts{"in s"}));
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
    EXPECT_EQ(log.texts(), Texts{});

    SensorHandlerType copy(second);
    EXPECT_EQ(log.texts(), (Texts{"Running SensorHanderType copy constructor\n"}));
    EXPECT_EQ(log.entries()[0]._file, "sensorManager/SensorHandlerType");
    EXPECT_EQ(copy.createHandler("x", someURL()), nullptr);
    EXPECT_EQ(SensorHandlerType::find(""), nullptr);
}
