#include "host/show/Json.h"

#include "explain/ValueJson.h"
#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "ostrel/FieldClass.h"
#include "scene/file/FieldVisit.h"
#include "trovio/Time.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

using Json = nlohmann::json;

template <class Value>
requires std::is_arithmetic_v<Value> || std::is_same_v<Value, std::string> Json json(const Value& value)
{
    return valueJson(value);
}

template <class Number, std::size_t count>
Json json(const Ostrel::Vector<Number, count>& value)
{
    Json list = Json::array();
    for (const Number number : value._elements)
        list.push_back(json(number));
    return list;
}

template <class Number, std::size_t order>
Json json(const Ostrel::Matrix<Number, order>& value)
{
    Json list = Json::array();
    for (std::size_t i = 0; i < order * order; ++i)
        list.push_back(json(value.data()[i % order * order + i / order]));
    return list;
}

Json json(const Ostrel::Rotation& value)
{
    Json list = Json::array();
    for (const float number : value.quaternion())
        list.push_back(json(number));
    return list;
}

const char* formatName(std::uint32_t format)
{
    switch (format) {
    case osg::Image::Alpha:
        return "alpha";
    case osg::Image::Rgb:
        return "RGB";
    case osg::Image::Rgba:
        return "RGBA";
    case osg::Image::Luminance:
        return "luminance";
    case osg::Image::LuminanceAlpha:
        return "luminance alpha";
    case osg::Image::Bgr:
        return "BGR";
    case osg::Image::Bgra:
        return "BGRA";
    }
    return "other";
}

Json json(const osg::ImagePtr& value)
{
    return imageJson(static_cast<std::uint64_t>(value->width()), static_cast<std::uint64_t>(value->height()),
                     formatName(value->pixelFormat()), value->size());
}

Json json(const Ostrel::Node* value)
{
    return value == nullptr ? Json() : Json(value->getDisplayName());
}

// Up to `maxElements` of a sequence; a single value as it is.
Json fieldJson(Ostrel::Field& field, std::size_t maxElements)
{
    return visitField(field, [maxElements]<class FieldClass>(FieldClass& concrete) {
        if constexpr (Multiple<FieldClass>) {
            Json list = Json::array();
            const std::size_t count = std::min(maxElements, concrete.values().size());
            for (std::size_t i = 0; i < count; ++i)
                list.push_back(json(typename FieldClass::Element(concrete.values()[i])));
            return list;
        } else {
            return json(concrete.value());
        }
    });
}

// How the elements of a field are written for people.
struct TextForm {
    Digits _digits;
    bool _isTime;
    std::size_t _rowLength; // of a matrix in rows, else 0
    std::size_t _limit;     // of a text, in bytes
};

template <class Element>
struct RowLength : std::integral_constant<std::size_t, 0> {
};
template <class Number, std::size_t order>
struct RowLength<Ostrel::Matrix<Number, order>> : std::integral_constant<std::size_t, order> {
};

template <class FieldClass>
constexpr std::size_t rowLength()
{
    if constexpr (Multiple<FieldClass>)
        return RowLength<typename FieldClass::Element>::value;
    else
        return RowLength<std::remove_cvref_t<decltype(std::declval<FieldClass&>().value())>>::value;
}

template <class FieldClass>
TextForm formFor(Digits digits, std::size_t limit)
{
    constexpr bool isTime = std::is_same_v<FieldClass, Ostrel::SFTime> || std::is_same_v<FieldClass, Ostrel::MFTime>;
    return {digits, isTime, digits == Digits::Few ? rowLength<FieldClass>() : 0, limit};
}

std::string allDigits(double number)
{
    const double size = std::abs(number);
    const bool isPlain = size == 0 || (size >= 1e-5 && size < 1e17);
    std::array<char, 32> text{};
    const auto format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    return {text.data(), std::to_chars(text.begin(), text.end(), number, format).ptr};
}

std::string fewDigits(double number)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.6g", number + 0.0); // of two zeros the one without a sign
    return text.data();
}

// Small numbers of seconds are durations, not dates.
std::string dateText(double seconds)
{
    constexpr double firstDate = 1e8; // in the year 1973
    if (!(seconds >= firstDate && seconds < Trovio::endOfDates))
        return allDigits(seconds + 0.0);
    const auto milliseconds = static_cast<std::int64_t>(seconds * 1000);
    const std::time_t whole = milliseconds / 1000;
    std::tm date{};
    gmtime_r(&whole, &date);
    std::array<char, 32> text{}, fraction{};
    std::strftime(text.data(), text.size(), "%FT%T", &date);
    std::snprintf(fraction.data(), fraction.size(), ".%03dZ", static_cast<int>(milliseconds % 1000));
    return std::string(text.data()) + fraction.data();
}

std::string numberText(double number, const TextForm& form)
{
    if (form._digits == Digits::All)
        return allDigits(number);
    return form._isTime ? dateText(number) : fewDigits(number);
}

std::string shortText(const Json& value, const TextForm& form)
{
    if (value.is_string())
        return "'" + escaped(value.get_ref<const std::string&>(), form._limit) + "'";
    if (value.is_number_float())
        return numberText(value.get<double>(), form);
    if (value.is_object() && value.contains("width") && value.contains("height") && value.contains("format"))
        return jsonText(value["width"]) + "x" + jsonText(value["height"]) + " " +
               escaped(value["format"].is_string() ? value["format"].get<std::string>() : "");
    if (!value.is_array())
        return jsonText(value);
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool startsRow = form._rowLength != 0 && i % form._rowLength == 0;
        text += (i == 0 ? "" : startsRow ? "; " : " ") + shortText(value[i], form);
    }
    return text;
}

std::string sequenceText(const Json& elements, std::size_t size, const TextForm& form)
{
    std::string text = "[" + std::to_string(size) + "]";
    std::size_t shown = 0;
    for (; shown < elements.size() && text.size() < form._limit; ++shown)
        text += (shown == 0 ? " " : ", ") + shortText(elements[shown], form);
    return shown < size ? text + ", …" : text;
}
} // namespace

std::string fieldText(Ostrel::Field& field)
{
    return jsonText(fieldJson(field, std::numeric_limits<std::size_t>::max()));
}

std::string jsonLine(const JsonTimes& times, const JsonSensor& sensor, Ostrel::Field& field)
{
    nlohmann::ordered_json line;
    line["time"] = times._frame;
    if (times._stamp)
        line["stamp"] = *times._stamp;
    if (!sensor._scene.empty())
        line["scene"] = sensor._scene;
    line["sensor"] = sensor._name;
    line["label"] = sensor._label;
    line["type"] = sensor._type;
    const std::string head = jsonText(line);
    return head.substr(0, head.size() - 1) + ",\"value\":" + fieldText(field) + "}\n";
}

std::string droppedAsJson(std::uint64_t dropped, std::uint64_t inAll)
{
    return "{\"dropped\":" + std::to_string(dropped) + ",\"total\":" + std::to_string(inAll) + "}\n";
}

std::string valueText(Ostrel::Field& field, Digits digits, std::size_t limit)
{
    // Each element takes two bytes at least.
    const Json value = fieldJson(field, limit / 2 + 1);
    return visitField(field, [&]<class FieldClass>(FieldClass& concrete) {
        const TextForm form = formFor<FieldClass>(digits, limit);
        if constexpr (Multiple<FieldClass>)
            return sequenceText(value, concrete.values().size(), form);
        else
            return shortText(value, form);
    });
}

std::string valueText(const Json& value, const Ostrel::FieldClass& fieldClass, Digits digits, std::size_t limit)
{
    return visitField(*fieldClass.create(), [&]<class FieldClass>(FieldClass&) {
        const TextForm form = formFor<FieldClass>(digits, limit);
        return Multiple<FieldClass> && value.is_array() ? sequenceText(value, value.size(), form)
                                                        : shortText(value, form);
    });
}
} // namespace Host
