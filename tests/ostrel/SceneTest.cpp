#include "ostrel/Scene.h"

#include "ostrel/FieldTypes.h"
#include "tests/ostrel/Recorder.h"
#include <gtest/gtest.h>

using namespace Ostrel;

namespace {

DirectSensor& addSensor(Scene& scene, const std::string& name, bool output = false)
{
    auto sensor = std::make_unique<DirectSensor>(std::make_unique<SFFloat>());
    sensor->setName(name);
    sensor->setOutput(output);
    return scene.add(std::move(sensor));
}

std::string namesOf(const std::vector<DirectSensor*>& sensors)
{
    std::string names;
    for (const DirectSensor* sensor : sensors)
        names += sensor->getName();
    return names;
}

Subject& updates(DirectSensor& sensor)
{
    return sensor.getDirectSensorProc()->getUpdateSubject();
}

TEST(Scene, ServicesInputsBeforeOutputsInSceneOrder)
{
    std::string order;
    Recorder recorder([&order](BaseObject* object) { order += dynamic_cast<DirectSensor&>(*object).getName(); });
    Scene scene;
    for (const char* name : {"A", "b", "C", "d"})
        updates(addSensor(scene, name, *name >= 'a')).attach(recorder);
    scene.frame(3.0);
    EXPECT_EQ(order, "ACbd");
    EXPECT_EQ(recorder._times, (std::vector<double>{3, 3, 3, 3}));
}

TEST(Scene, SensorsMayComeAndGoDuringAFrame)
{
    Scene scene;
    Recorder others;
    DirectSensor& first = addSensor(scene, "first");
    DirectSensor& next = addSensor(scene, "next");
    updates(next).attach(others);
    updates(addSensor(scene, "last")).attach(others);
    Recorder changes([&](auto*) {
        scene.remove(next);
        updates(addSensor(scene, "new")).attach(others);
        scene.remove(first); // the one that is being serviced
    });
    updates(first).attach(changes);
    updates(first).attach(others); // behind what ends the subject
    scene.frame(1.0);
    EXPECT_EQ(others.count(), 1U);
    EXPECT_EQ(namesOf(scene.sensors()), "lastnew");
    scene.frame(2.0);
    EXPECT_EQ(others.count(), 3U);
}

TEST(Scene, OutputsThatAppearDuringAFrameAreServicedInIt)
{
    Scene scene;
    Recorder outputs;
    DirectSensor& turning = addSensor(scene, "turning");
    Recorder turns([&](auto*) { turning.setOutput(true); });
    updates(turning).attach(turns);
    scene.frame(1.0);
    EXPECT_EQ(turns.count(), 2U); // once in each direction
    turning.setOutput(false);
    updates(turning).detach(turns);
    Recorder adds([&](auto*) { updates(addSensor(scene, "new", true)).attach(outputs); });
    updates(turning).attach(adds);
    scene.frame(2.0);
    EXPECT_EQ(outputs.count(), 1U);
}

TEST(Scene, TellsWhatChangedOnce)
{
    Scene scene;
    DirectSensor& a = addSensor(scene, "a");
    addSensor(scene, "b");
    DirectSensor& c = addSensor(scene, "c");
    for (DirectSensor* sensor : {&c, &a, &c})
        sensor->getField()->processValueChange(1.0, CallerOutside);
    EXPECT_EQ(namesOf(scene.takeChanged()), "ac");
    EXPECT_EQ(namesOf(scene.takeChanged()), "");
    c.getField()->processValueChange(1.0, CallerOutside);
    scene.remove(c);
    EXPECT_EQ(namesOf(scene.takeChanged()), "") << "it is gone";
}

TEST(Scene, UnregistersAllSensorsBeforeTheContextEnds)
{
    std::string order;
    Recorder unregisters([&order](BaseObject* object) {
        const auto& sensor = dynamic_cast<DirectSensor&>(*object);
        EXPECT_EQ(sensor.context()->getAttachment(0), nullptr); // it lives
        order += sensor.getName();
    });
    DirectSensorProc::unregisterSubject().attach(unregisters);
    {
        Scene scene;
        addSensor(scene, "a");
        addSensor(scene, "b");
    }
    EXPECT_EQ(order, "ab");
}

} // namespace
