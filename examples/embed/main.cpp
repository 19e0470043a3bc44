// Feeds a scene of this program from a thread of its own and from a node module, and shows what arrives.
#include "merid/URL.h"
#include "ostrel/FieldTypes.h"
#include "ostrel/Scene.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorHandlerType.h"
#include "sensorManager/SensorManager.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include "trovio/Values.h"
#include <chrono>
#include <cstdio>
#include <thread>

namespace {

// The scene owns the sensor, and the sensor its field.
template <class FieldClass>
FieldClass& addSensor(Ostrel::Scene& scene, const char* label)
{
    auto sensor = std::make_unique<Ostrel::DirectSensor>(std::make_unique<FieldClass>());
    sensor->setLabel(label);
    sensor->setBufferSize(64); // so that no value is lost between two frames
    return static_cast<FieldClass&>(*scene.add(std::move(sensor)).getField());
}

// False if not all values came within ten seconds.
bool runFrames(Ostrel::Scene& scene)
{
    auto& head = addSensor<Ostrel::SFVec3f>(scene, "Head");
    auto& wave = addSensor<Ostrel::SFFloat>(scene, "Wave");
    bool complete = false;
    for (int frame = 0; frame < 1000 && !complete; ++frame) {
        scene.frame(Trovio::Time::getCurrentTime().getSeconds());
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        complete = head.value().data()[2] == 50.0F && wave.value() != 0.0F;
    }
    const float* position = head.value().data();
    std::printf("head %g %g %g, wave %g\n", double(position[0]), double(position[1]), double(position[2]),
                double(wave.value()));
    return complete;
}
} // namespace

int main()
{
    Ostrel::initSensorManager();
    Trovio::Root::init();
    bool complete = false;
    {
        Ostrel::Scene scene;
        Ostrel::SensorManager& manager = *Ostrel::SensorManager::requestManager(scene.context());
        Ostrel::SensorHandler& handler = *manager.addHandler("Trovio", "devices", Merid::URL("file:."));
        std::string node = "Generator", settings = "type=Float shape=ramp rate=100";
        handler.addParameter(node, settings);
        std::string from = "Generator/value", to = "Wave";
        handler.addLabel(from, to);

        // The first handler stands in the root as "Context", and what it serves below it.
        Trovio::OutSlot<Trovio::Vec3<float>> tracker("position in metres");
        Trovio::Root::get().addOutSlot("Tracker", &tracker);
        Trovio::Root::get().addRoute("Tracker", "Context/Head");
        std::thread producer([&tracker] {
            for (int i = 1; i <= 50; ++i)
                tracker.push(Trovio::Data(Trovio::Vec3<float>(0.0F, 1.6F, float(i))));
        });
        complete = runFrames(scene);

        // From the producers inwards: threads, sensors, own slots, handlers, the context, the root.
        producer.join();
        scene.clear();
        Trovio::Root::get().removeSlot("Tracker");
        manager.delHandler(&handler);
    }
    Trovio::Root::shutdown();
    return complete ? 0 : 1;
}
