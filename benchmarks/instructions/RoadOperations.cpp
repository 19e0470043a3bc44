#include "benchmarks/instructions/Operation.h"
#include "benchmarks/road/Road.h"
#include "trovio/InSlot.h"

namespace Bench {

namespace {

/// A scene of one sensor that takes values or sends them.
template <class FieldT, class Value>
void addInput(Operations& operations, const std::string& name, const Value& value)
{
    const auto road = std::make_shared<Road>();
    Ostrel::DirectSensor& sensor = road->add<FieldT>(false);
    auto& slot = road->slot<Trovio::InSlot<Value>>(sensor);
    operations.push_back({name, [road] { road->scene().frame(1e9); },
                          [&slot, record = Trovio::Data<Value>(value, Trovio::Time(1e9))] { slot.push(record); }});
}

template <class FieldT>
void addOutput(Operations& operations, const std::string& name)
{
    const auto road = std::make_shared<Road>();
    road->add<FieldT>(true);
    operations.push_back({name, [road] { road->scene().frame(1e9); }});
}

/// Sensors come to a context with four handlers, and leave it.
void addRegistration(Operations& operations, const std::string& name, int count)
{
    const auto context = std::make_shared<Ostrel::Context>();
    for (const char* handler : {"a", "b", "c", "d"})
        Ostrel::SensorManager::requestManager(*context)->addHandler("Trovio", handler, Merid::URL("file:."));
    const auto sensors = std::make_shared<std::vector<std::unique_ptr<Ostrel::DirectSensor>>>();
    for (int i = 0; i < count; ++i)
        sensors->emplace_back(std::make_unique<Ostrel::DirectSensor>(std::make_unique<Ostrel::SFVec3f>()))
            ->setLabel("sensor" + std::to_string(i));
    operations.push_back(
        {name, [context, sensors] {
             for (Ostrel::Context* const place : {context.get(), static_cast<Ostrel::Context*>(nullptr)})
                 for (const auto& sensor : *sensors)
                     sensor->setContext(place);
         }});
}

} // namespace

void addRoadOperations(Operations& operations)
{
    static const OpenRoot root;
    addInput<Ostrel::SFVec3f>(operations, "input road, SFVec3f", Trovio::Vec3<float>(1, 2, 3));
    addInput<Ostrel::SFMatrix4f>(operations, "input road, SFMatrix4f", Trovio::Matrix4<float>());
    Trovio::SharedVector<Trovio::Vec3<float>> values;
    values.acquire();
    values->resize(1'000);
    addInput<Ostrel::MFVec3f>(operations, "input road, MFVec3f of 1,000", values);
    addOutput<Ostrel::SFVec3f>(operations, "output road, SFVec3f");
    const auto idle = std::make_shared<Road>();
    for (int i = 0; i < 1'000; ++i)
        idle->add<Ostrel::SFVec3f>(false);
    operations.push_back({"frame over 1,000 sensors without a value", [idle] { idle->scene().frame(1e9); }});
    addRegistration(operations, "1,000 sensors come and go, four handlers", 1'000);
    addRegistration(operations, "4,000 sensors come and go, four handlers", 4'000);
}

} // namespace Bench
