#include "ostrel/DirectSensor.h"

#include "ostrel/Context.h"
#include "ostrel/FieldTypes.h"
#include "tests/ostrel/Recorder.h"
#include <gtest/gtest.h>
#include <stdexcept>

using namespace Ostrel;

namespace {

/// Writes "+" or "-" with the name of each sensor that is registered or unregistered.
class Registration : public ::testing::Test {
protected:
    Registration()
    {
        DirectSensorProc::registerSubject().attach(_register);
        DirectSensorProc::unregisterSubject().attach(_unregister);
    }
    void note(char sign, BaseObject* object)
    {
        auto* const sensor = dynamic_cast<DirectSensor*>(object);
        ASSERT_NE(sensor, nullptr);
        ASSERT_NE(sensor->getDirectSensorProc(), nullptr);
        _log += sign + sensor->getName() + (sensor->context() == &_first ? "1 " : "2 ");
    }

    Context _first;
    Context _second;
    std::string _log;
    Recorder _register{[this](BaseObject* object) { note('+', object); }};
    Recorder _unregister{[this](BaseObject* object) { note('-', object); }};
};

TEST_F(Registration, FollowsTheContextAndNeverComesTwice)
{
    DirectSensor sensor(std::make_unique<SFFloat>());
    sensor.setName("s");
    EXPECT_FALSE(sensor.isRegistered());
    sensor.setContext(&_first);
    sensor.setContext(&_first);
    EXPECT_EQ(sensor.state(), NodeState::Active);
    sensor.setContext(&_second);
    sensor.setContext(nullptr);
    sensor.setContext(nullptr);
    EXPECT_EQ(sensor.state(), NodeState::Created);
    EXPECT_EQ(_log, "+s1 -s1 +s2 -s2 ");
}

TEST_F(Registration, EndsWithTheSensor)
{
    {
        DirectSensor sensor(std::make_unique<SFFloat>());
        sensor.setContext(&_first);
    }
    EXPECT_EQ(_log, "+1 -1 ");
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
    sensor.setContext(nullptr);
    EXPECT_EQ(_log, "+1 -1 +1 -1 ");
}

TEST_F(Registration, HoldsWhenAnObserverThrows)
{
    DirectSensor sensor(std::make_unique<SFFloat>());
    _register._action = [](BaseObject*) { throw std::runtime_error("no"); };
    EXPECT_THROW(sensor.setContext(&_first), std::runtime_error);
    EXPECT_TRUE(sensor.isRegistered());
    sensor.setContext(nullptr);
    EXPECT_EQ(_log, "-1 ");
}

} // namespace
