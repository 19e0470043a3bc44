#include "nodes/mqtt/JsonPayload.h"

#include <nlohmann/json.hpp>

namespace Trovio::Nodes {

namespace {

using Json = nlohmann::json;

constexpr std::string_view componentNames[] = {"xyzw", "rgba"};

/// Discarded where the text is no JSON, or too deep.
Json parse(std::string_view text)
{
    bool isTooDeep = false;
    const auto watch = [&isTooDeep](int depth, Json::parse_event_t event, Json&) {
        const bool begins = event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start;
        isTooDeep = isTooDeep || (begins && depth >= MaxJsonDepth);
        return !isTooDeep;
    };
    Json document = Json::parse(text.begin(), text.end(), watch, false);
    return isTooDeep ? Json(Json::value_t::discarded) : document;
}

bool collect(const Json& value, std::vector<TextNumber>& numbers);

/// {"x": 1, "y": 2}: the first so many names of a row, in its order.
bool collectMembers(const Json& object, std::vector<TextNumber>& numbers)
{
    for (const std::string_view names : componentNames) {
        if (object.size() > names.size() || !object.contains(names.substr(0, 1)))
            continue;
        for (std::size_t i = 0; i < object.size(); ++i) {
            const auto member = object.find(names.substr(i, 1));
            if (member == object.end() || !collect(*member, numbers))
                return false;
        }
        return true;
    }
    return false;
}

bool collectNumber(const Json& value, std::vector<TextNumber>& numbers)
{
    const double number = value.get<double>();
    const bool isWhole = value.is_number_integer() &&
                         (!value.is_number_unsigned() || value.get<std::uint64_t>() <= std::uint64_t(INT64_MAX));
    numbers.push_back({number, isWhole ? std::optional(value.get<std::int64_t>()) : std::nullopt});
    return std::isfinite(number);
}

/// False where something is neither a number nor made of numbers.
bool collect(const Json& value, std::vector<TextNumber>& numbers)
{
    if (value.is_number())
        return collectNumber(value, numbers);
    if (value.is_boolean()) {
        numbers.push_back({value.get<bool>() ? 1.0 : 0.0, value.get<bool>() ? 1 : 0});
        return true;
    }
    if (value.is_string())
        return readTextNumbers(value.get_ref<const std::string&>(), numbers);
    if (value.is_array())
        return std::all_of(value.begin(), value.end(), [&numbers](const Json& one) { return collect(one, numbers); });
    return value.is_object() && collectMembers(value, numbers);
}

const Json* findMember(const Json& document, const std::string& pointer)
{
    try {
        const Json::json_pointer place(pointer);
        return !document.is_discarded() && document.contains(place) ? &document.at(place) : nullptr;
    } catch (const Json::exception&) { // an index that no array can have
        return nullptr;
    }
}

/// Numbers from begin on that make one element.
Json formatElement(const TextRecord& record, std::size_t begin, const PayloadForm& form)
{
    const auto format = [&](const TextNumber& number) -> Json {
        using Switches = PayloadForm::Switches;
        if (record._isSwitch && form._switches == Switches::Bool)
            return number._value != 0.0;
        if (record._isSwitch && form._switches == Switches::OnOff)
            return number._value != 0.0 ? "ON" : "OFF";
        return number._whole ? Json(*number._whole) : Json(number._value);
    };
    if (record._width == 1)
        return format(record._numbers[begin]);
    const bool isObject = form._vectors == PayloadForm::Vectors::Object && record._width <= 4;
    Json element = isObject ? Json::object() : Json::array();
    for (std::size_t i = 0; i < record._width; ++i) {
        if (isObject)
            element[std::string(componentNames[record._isColour ? 1 : 0].substr(i, 1))] =
                format(record._numbers[begin + i]);
        else
            element.push_back(format(record._numbers[begin + i]));
    }
    return element;
}

Json formatRecord(const TextRecord& record, const PayloadForm& form)
{
    if (record._isText)
        return record._text;
    if (!record._isArray)
        return formatElement(record, 0, form);
    Json all = Json::array();
    for (std::size_t i = 0; i < record._numbers.size(); i += record._width)
        all.push_back(formatElement(record, i, form));
    return all;
}

} // namespace

JsonPayload::JsonPayload(std::string_view payload) : _payload(payload) {}
JsonPayload::~JsonPayload() = default;

const Json& JsonPayload::document()
{
    if (!_document)
        _document = std::make_unique<Json>(parse(_payload));
    return *_document;
}

std::optional<TextContent> JsonPayload::find(const std::string& pointer)
{
    _numbers.clear();
    const auto contentOf = [this](std::string_view text, bool hasNumbers) -> TextContent {
        return {text, hasNumbers ? std::optional(std::span<const TextNumber>(_numbers)) : std::nullopt};
    };
    if (pointer.empty()) {
        // Most payloads are one number, which needs no document.
        if (readTextNumbers(_payload, _numbers))
            return contentOf(_payload, true);
        _numbers.clear();
        return contentOf(_payload, !document().is_discarded() && collect(document(), _numbers));
    }
    const Json* member = findMember(document(), pointer);
    if (!member)
        return std::nullopt;
    _text = member->is_string() ? member->get_ref<const std::string&>()
                                : member->dump(-1, ' ', false, Json::error_handler_t::replace);
    return contentOf(_text, collect(*member, _numbers));
}

bool isJsonPointer(const std::string& pointer)
{
    try {
        return !Json::json_pointer(pointer).empty();
    } catch (const Json::exception&) {
        return false;
    }
}

std::optional<std::string> formatPayload(const TextRecord& record, const std::string& pointer, const PayloadForm& form)
{
    if (!record._isFinite)
        return std::nullopt;
    try {
        Json value = formatRecord(record, form);
        for (Json::json_pointer place(pointer); !place.empty(); place.pop_back()) {
            Json around = Json::object();
            around[place.back()] = std::move(value);
            value = std::move(around);
        }
        std::string payload = value.is_string() ? value.get<std::string>() : value.dump();
        return payload.size() <= MaxPayload ? std::optional(std::move(payload)) : std::nullopt;
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

} // namespace Trovio::Nodes
