#include "host/Json.h"

#include "host/Escape.h"
#include "host/FieldVisit.h"
#include "host/JsonText.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {
namespace {

using Json = nlohmann::json;

Json json(bool value)
{
    return value;
}

Json json(std::int32_t value)
{
    return value;
}

Json json(double value)
{
    return value;
}

// The shortest decimal that is this float, 1.6 and not 1.600000023841858.
Json json(float value)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.begin(), text.end(), value).ptr;
    double shortest = value;
    std::from_chars(text.begin(), end, shortest);
    return shortest;
}

Json json(const std::string& value)
{
    return value;
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
    return {{"width", value->width()},
            {"height", value->height()},
            {"format", formatName(value->pixelFormat())},
            {"bytes", value->size()}};
}

Json json(const Ostrel::Node* value)
{
    return value == nullptr ? Json() : Json(value->getDisplayName());
}

// Up to `most` elements of a sequence; a single value as it is.
Json valueJson(Ostrel::Field& field, std::size_t most)
{
    return visitField(field, [most]<class FieldClass>(FieldClass& concrete) {
        if constexpr (Multiple<FieldClass>) {
            Json list = Json::array();
            const std::size_t count = std::min(most, concrete.values().size());
            for (std::size_t i = 0; i < count; ++i)
                list.push_back(json(typename FieldClass::Element(concrete.values()[i])));
            return list;
        } else {
            return json(concrete.value());
        }
    });
}

std::string shortText(const Json& value, int digits)
{
    if (value.is_string())
        return inQuotes(value.get_ref<const std::string&>());
    if (value.is_number_float()) {
        std::array<char, 32> text{};
        std::snprintf(text.data(), text.size(), "%.*g", digits, value.get<double>());
        return text.data();
    }
    if (value.is_object())
        return std::to_string(value["width"].get<int>()) + "x" + std::to_string(value["height"].get<int>()) + " " +
               value["format"].get<std::string>();
    if (!value.is_array())
        return jsonText(value);
    std::string text;
    for (const Json& element : value)
        text += (text.empty() ? "" : " ") + shortText(element, digits);
    return text;
}

std::string sequenceText(const Json& elements, std::size_t size, int digits, std::size_t limit)
{
    std::string text = "[" + std::to_string(size) + "]";
    std::size_t shown = 0;
    for (; shown < elements.size() && text.size() < limit; ++shown)
        text += (shown == 0 ? " " : ", ") + shortText(elements[shown], digits);
    return shown < size ? text + ", …" : text;
}
} // namespace

std::string jsonLine(double time, const JsonSensor& sensor, Ostrel::Field& field)
{
    nlohmann::ordered_json line;
    line["time"] = time;
    if (!sensor._scene.empty())
        line["scene"] = sensor._scene;
    line["sensor"] = sensor._name;
    line["label"] = sensor._label;
    line["type"] = sensor._type;
    const std::string head = jsonText(line);
    return head.substr(0, head.size() - 1) +
           ",\"value\":" + jsonText(valueJson(field, std::numeric_limits<std::size_t>::max())) + "}\n";
}

std::string valueText(Ostrel::Field& field, int digits, std::size_t limit)
{
    // Each element takes two bytes at least.
    const Json value = valueJson(field, limit / 2 + 1);
    return visitField(field, [&]<class FieldClass>(FieldClass& concrete) {
        if constexpr (Multiple<FieldClass>)
            return sequenceText(value, concrete.values().size(), digits, limit);
        else
            return shortText(value, digits);
    });
}
} // namespace Host
