#include "benchmarks/harness/Workload.h"
#include "benchmarks/road/InputRoad.h"
#include "benchmarks/road/OutputRoad.h"

namespace Bench {

namespace {

/// The road by hand and by the library, on the same objects.
template <class RoadT>
void addRoad(Workload& workload, const std::shared_ptr<RoadT>& road, std::size_t perBatch)
{
    workload.setMetrics({{"", "us", 1e-3}});
    workload.add("walk by hand", [=] { return sampleBatches(perBatch, [&] { road->walk(); }); });
    workload.add("walk by hand, tight", [=] { return sampleBatches(perBatch, [&] { road->walkTightly(); }); });
    workload.add("library", [=] { return sampleBatches(perBatch, [&] { road->frame(); }); });
    workload.limit("library", "walk by hand", 1.0);
    if (!std::is_same_v<RoadT, InputRoad<Ostrel::SFString, std::string>>) // a text is copied into the slot
        workload.forbidAllocations("library");
}

template <class FieldT, class Value>
void addInput(Workload& workload, const Value& value)
{
    addRoad(workload, std::make_shared<InputRoad<FieldT, Value>>(value), 4);
}

using Array = Trovio::SharedVector<Trovio::Vec3<float>>;

Array someArray()
{
    Array array;
    array.acquire();
    array->assign(1'000, Trovio::Vec3<float>(1, 2, 3));
    return array;
}

const std::vector<Entry> roads{
    {"W6.SFVec3f", [](Workload& w) { addInput<Ostrel::SFVec3f>(w, Trovio::Vec3<float>(1, 2, 3)); }},
    {"W6.SFMatrix4f", [](Workload& w) { addInput<Ostrel::SFMatrix4f>(w, Trovio::Matrix4<float>()); }},
    {"W6.SFString",
     [](Workload& w) { addInput<Ostrel::SFString>(w, std::string("a text that does not fit into the object")); }},
    {"W6.MFVec3f", [](Workload& w) { addInput<Ostrel::MFVec3f>(w, someArray()); }},
    {"W7", [](Workload& w) { addRoad(w, std::make_shared<OutputRoad<Ostrel::SFVec3f, Trovio::Vec3<float>>>(), 1); }},
};

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads(Bench::roads, argc, argv);
}
