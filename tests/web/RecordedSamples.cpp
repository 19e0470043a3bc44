// recordedSamples FILE: records values of all slot types into FILE, each type in a slot of its own, and prints them in
// their order, each as a line of JSON: the slot's label, its type, the message in hexadecimal digits, the value as the
// host shows it, and its time stamp.
#include "monitor/Recorder.h"
#include "monitor/codec/SlotCodec.h"
#include "tests/monitor/AllValues.h"
#include "tests/web/HexDigits.h"
#include "trovio/Root.h"

#include <iostream>
#include <nlohmann/json.hpp>

using namespace Monitor;

namespace {

struct Samples {
    const SlotCodec* _codec;
    std::unique_ptr<AnySource> _source;
    std::vector<Bytes> _messages;

    std::string label() const { return "samples/" + std::string(_codec->slotType()); }
};

Trovio::Time stampOf(std::size_t number)
{
    return Trovio::Time(1.7e9 + static_cast<double>(number) / 7);
}

std::vector<Samples> samplesOfAllTypes()
{
    std::vector<Samples> all;
    Trovio::forEachSlotType([&all]<class T>(Trovio::TypeTag<T>) {
        const SlotCodec* const codec = SlotCodec::find(Trovio::TypeName<T>::getName());
        Samples& samples = all.emplace_back(Samples{codec, codec->makeSource(Trovio::TypeName<T>::getName()), {}});
        for (const T& value : allValues<T>()) {
            const Trovio::Data<T> record(value, stampOf(samples._messages.size()));
            encode(record, samples._messages.emplace_back());
        }
    });
    return all;
}

void require(bool holds, const std::string& problem)
{
    if (!holds)
        throw std::runtime_error(problem);
}

void push(const Samples& samples)
{
    std::string problem;
    for (std::size_t i = 0; i < samples._messages.size(); ++i)
        require(samples._source->write(samples._messages[i], stampOf(i), problem), problem);
}

void print(const Samples& samples)
{
    for (std::size_t i = 0; i < samples._messages.size(); ++i) {
        std::string json, problem;
        require(samples._codec->toJson(samples._messages[i], json, problem), problem);
        const nlohmann::json line = {{"label", samples.label()},
                                     {"type", samples._codec->slotType()},
                                     {"message", hexOf(samples._messages[i])},
                                     {"json", json},
                                     {"stamp", stampOf(i).getSeconds()}};
        std::cout << line.dump() << '\n';
    }
}

void recordAll(const std::string& path)
{
    const std::vector<Samples> all = samplesOfAllTypes();
    auto space = std::make_unique<Trovio::Namespace>();
    space->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    for (const Samples& samples : all)
        space->addOutSlot(std::string(samples._codec->slotType()), &samples._source->slot());
    Trovio::Root::get().addNamespace("samples", std::move(space));
    Recorder recorder({"recordedSamples", {}, {}, {}});
    recorder.start({path});
    for (const Samples& samples : all)
        push(samples);
    const RecorderStatus status = recorder.stop();
    require(status._problem.empty() && status._notKept == 0, status._problem + status.line());
    for (const Samples& samples : all)
        print(samples);
    Trovio::Root::get().removeNamespace("samples");
}

} // namespace

int main(int, char** arguments)
{
    Trovio::Root::init();
    recordAll(arguments[1]);
    Trovio::Root::shutdown();
}
