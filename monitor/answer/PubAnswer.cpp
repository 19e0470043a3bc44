#include "explain/text/Escape.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/SlotMap.h"
#include "monitor/codec/ClientJson.h"
#include "monitor/codec/SlotCodec.h"
#include "trovio/Root.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <span>

namespace Monitor {
namespace {

using Explain::inQuotes;
using nlohmann::json;
using Trovio::Root;

/// An out-slot that is connected with one in-slot, for as long as this lives. It stands in a namespace that nobody else
/// meets.
class Pen {
public:
    Pen(const SlotCodec& codec, const std::string& label) : _source(codec.makeSource("pub"))
    {
        auto space = std::make_unique<Trovio::Namespace>();
        space->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        space->addOutSlot(label, &_source->slot());
        _space = Root::get().addNamespace("@pub", std::move(space));
        _from = _space + "/" + label;
        try {
            Root::get().addRoute(_from, label);
        } catch (...) {
            Root::get().removeNamespace(_space);
            throw;
        }
        _to = label;
    }
    ~Pen()
    {
        Root::get().removeRoute(_from, _to);
        Root::get().removeNamespace(_space);
    }
    Pen(const Pen&) = delete;
    Pen& operator=(const Pen&) = delete;

    bool isConnected() const { return _source->slot().isActive(); }
    AnySource& source() { return *_source; }

private:
    const std::unique_ptr<AnySource> _source;
    std::string _space, _from, _to;
};

struct Target {
    std::string _label, _type;
    bool _isOutput = false; // the out-slot of a sensor, whose field is given the value
};

std::string whyNone(const SlotMap& map, const SlotMap::Place& place)
{
    std::string ends;
    for (const SlotMap::Joint& joint : map.joints())
        if (joint._from == &place)
            ends += (ends.empty() ? "; it is connected with " : ", ") + inQuotes(joint._to->_label);
    return inQuotes(place._label) + " is an out-slot, and values are written into in-slots" + ends;
}

/// A sensor that several handlers serve has a slot in each, and any will do.
Target searched(const Context& context, const std::string& label)
{
    const SlotMap map(Root::get().inspect(), placesOf(context));
    std::string problem;
    const SlotMap::Place* place = map.find(label, problem, Trovio::Slot::Direction::In);
    if (!place)
        place = map.findSensor(label);
    if (!place)
        throw Refusal(404, problem);
    const bool isOutput = place->isOut() && !place->_sensor.empty();
    if (place->isOut() && !isOutput)
        throw Refusal(400, whyNone(map, *place));
    return {place->_label, place->_slot->_typeName, isOutput};
}

/// Who writes often says the whole label, and need not wait for a copy of the tree.
Target target(const Context& context, const std::string& label)
{
    if (!Trovio::isForTools(label))
        for (const Trovio::SlotInfo& slot : Root::get().findSlots(label))
            if (slot._direction == Trovio::Slot::Direction::In)
                return {label, slot._typeName, false};
    return searched(context, label);
}

json readBody(const std::string& body)
{
    auto read = readObject(body);
    if (!read || !read->contains("value"))
        throw Refusal(400, R"(the body is no JSON object with "value", of up to 16 levels, such as )"
                           R"({"value": 1.5, "stamp": 1700000000.25})");
    if (const auto stamp = read->find("stamp"); stamp != read->end() && !stamp->is_number() && !stamp->is_null())
        throw Refusal(400, "\"stamp\" is no number; allowed are seconds since 1970, or nothing for now");
    for (const auto& [name, value] : read->items())
        if (name != "value" && name != "stamp" && name != "label" && name != "time") // echo's lines have these, too
            throw Refusal(400,
                          "the body knows nothing called " + inQuotes(name) + R"(; allowed are "value" and "stamp")");
    return std::move(*read);
}

/// What is to be written, and with which stamp, where the client says one.
struct Record {
    Bytes _message;
    std::optional<Trovio::Time> _stamp{};
};

Record readJsonRecord(const std::string& body, const Target& place, const SlotCodec& codec)
{
    const json read = readBody(body);
    Record record;
    std::string problem;
    if (!codec.fromJson(read["value"], record._message, problem))
        throw Refusal(400, "\"value\" is no " + place._type + " for " + inQuotes(place._label) + ": " + problem);
    if (const auto stamp = read.find("stamp"); stamp != read.end() && stamp->is_number())
        record._stamp = Trovio::Time(stamp->get<double>());
    return record;
}

Record readMessage(const Question& question, const Target& place, const SlotCodec& codec)
{
    if (question._codec != &codec)
        throw Refusal(400, inQuotes(place._label) + " takes values of type " + place._type + ", so messages of " +
                               std::string(codec.schemaName()) + ", and not of " +
                               std::string(question._codec->schemaName()));
    const auto bytes = std::as_bytes(std::span(question._body));
    return {Bytes(bytes.begin(), bytes.end())};
}

Answer write(const Record& record, const Target& place, const SlotCodec& codec)
{
    Pen pen(codec, place._label);
    if (!pen.isConnected())
        throw Refusal(404, inQuotes(place._label) + " is not seen in the root, so nothing can be written into it; show "
                                                    "it by external routes");
    const Trovio::Time time = record._stamp.value_or(Trovio::Time::getCurrentTime());
    std::string problem;
    if (!pen.source().write(record._message, time, problem))
        throw Refusal(400, "the message for " + inQuotes(place._label) + ": " + problem);
    return jsonAnswer({{"label", place._label}, {"stamp", time.getSeconds()}});
}

} // namespace

Answer answerPub(const Context& context, const Question& question)
{
    requireWriting(question);
    const Target place = target(context, labelIn(question));
    if (place._isOutput && !question._mayWait) {
        Answer later;
        later._hasToWait = true;
        return later;
    }
    const SlotCodec& codec = *SlotCodec::find(place._type);
    const Record record =
        question._codec ? readMessage(question, place, codec) : readJsonRecord(question._body, place, codec);
    std::string json, problem;
    if (!codec.toJson(record._message, json, problem))
        throw Refusal(400, "the message for " + inQuotes(place._label) + ": " + problem);
    if (place._isOutput)
        return answerGiven(context, place._label, json);
    const Answer written = write(record, place, codec);
    noteGiven(context, place._label, json);
    return written;
}

} // namespace Monitor
