#include "benchmarks/harness/Workload.h"
#include "benchmarks/road/Road.h"
#include "trovio/InSlot.h"
#include <cstring>

namespace Bench {

namespace {

constexpr unsigned width = 1920;
constexpr unsigned height = 1080;

/// A picture in one format goes into the slot of a sensor, and a frame brings it into the sensor's field.
class ImageRoad {
public:
    explicit ImageRoad(Trovio::Image::Format format) : _sensor(_road.add<Ostrel::SFImage>(false))
    {
        _image.acquire();
        *_image = Trovio::Image(format, width, height);
        std::memset(_image->getData(), 127, _image->getDataSize());
    }

    void frame()
    {
        _road.slot<Trovio::InSlot<Trovio::SharedImage>>(_sensor).push(Trovio::Data(_image, Trovio::Time(1e9)));
        _road.scene().frame(1e9);
    }

    std::size_t bytesHandedOver() { return static_cast<Ostrel::SFImage&>(*_sensor.getField()).value()->size(); }

private:
    OpenRoot _root;
    Road _road;
    Ostrel::DirectSensor& _sensor;
    Trovio::SharedImage _image;
};

enum class Way { Direct, Converted };

void addImage(Workload& workload, Trovio::Image::Format format, Way way)
{
    const auto road = std::make_shared<ImageRoad>(format);
    road->frame();
    const std::size_t bytes = road->bytesHandedOver();
    workload.setMetrics({{"", "us", 1e-3}});
    workload.add("memcpy", [from = std::vector<char>(bytes, 1), to = std::vector<char>(bytes)]() mutable {
        return sampleBatches(1, [&] {
            std::memcpy(to.data(), from.data(), from.size());
            keep(to[0]);
        });
    });
    workload.add("library", [road] { return sampleBatches(1, [&] { road->frame(); }); });
    workload.limit("library", "memcpy", way == Way::Direct ? 1.2 : 3);
    if (way == Way::Direct) // a converted picture is a new one
        workload.forbidAllocations("library");
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    using Bench::Workload;
    return Bench::runWorkloads(
        {{"W10.direct-RGB", [](Workload& w) { Bench::addImage(w, Trovio::Image::RGB, Bench::Way::Direct); }},
         {"W10.direct-RGBA", [](Workload& w) { Bench::addImage(w, Trovio::Image::RGBA, Bench::Way::Direct); }},
         {"W10.converted-ARGB", [](Workload& w) { Bench::addImage(w, Trovio::Image::ARGB, Bench::Way::Converted); }},
         {"W10.converted-LA",
          [](Workload& w) { Bench::addImage(w, Trovio::Image::LuminanceAlpha, Bench::Way::Converted); }}},
        argc, argv);
}
