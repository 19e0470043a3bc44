#include "ostrel/DirectSensor.h"

#include "ostrel/Context.h"
#include "ostrel/FieldTypes.h"
#include "tests/ostrel/Recorder.h"
#include <gtest/gtest.h>

using namespace Ostrel;

namespace {

/// Writes "+" or "-" with the context of each sensor that is registered or unregistered.
class Registration : public ::testing::Test {
protected:
    Registration()
    {
        DirectSensorProc::registerSubject().attach(_register);
        DirectSensorProc::unregisterSubject().attach(_unregister);
    }
    void note(char sign, BaseObject* object)
    {
        const auto& sensor = dynamic_cast<DirectSensor&>(*object);
        EXPECT_NE(sensor.getDirectSensorProc(), nullptr);
        _log += sign + std::string(sensor.context() == &_first ? "1 " : "2 ");
    }

    Context _first, _second;
    std::string _log;
    Recorder _register{[this](BaseObject* object) { note('+', object); }};
    Recorder _unregister{[this](BaseObject* object) { note('-', object); }};
};

TEST_F(Registration, FollowsTheContextAndEndsWithTheSensor)
{
    {
        DirectSensor sensor(std::make_unique<SFFloat>());
        for (Context* context : {&_first, &_first, &_second, static_cast<Context*>(nullptr)})
            sensor.setContext(context);
        EXPECT_EQ(sensor.state(), NodeState::Created);
        sensor.setContext(nullptr);
        sensor.setContext(&_first);
        EXPECT_EQ(sensor.state(), NodeState::Active);
    }
    EXPECT_EQ(_log, "+1 -1 +2 -2 +1 -1 ");
}

TEST_F(Registration, NeedsAProc)
{
    DirectSensor sensor;
    sensor.setContext(&_first);
    EXPECT_EQ(_log, "");
    sensor.setDirectSensorProc(std::make_unique<DirectSensorProc>(nullptr));
    EXPECT_EQ(sensor.getField(), nullptr);
    sensor.setDirectSensorProc(std::make_unique<DirectSensorProc>(std::make_unique<SFBool>()));
    EXPECT_EQ(sensor.getField()->getNode(), &sensor);
    sensor.setDirectSensorProc(nullptr);
    EXPECT_EQ(_log, "+1 -1 +1 -1 ");
}

} // namespace
