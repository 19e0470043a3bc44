#include "nodes/mqtt/JsonPayload.h"
#include <gtest/gtest.h>

namespace Trovio::Nodes {
namespace {

struct PayloadRow {
    const char* _payload;
    const char* _pointer;
    const char* _numbers; // "none" where the payload has other things, "nothing" where it has no such member
};

std::string numbersOf(const PayloadRow& row)
{
    JsonPayload payload(row._payload);
    const auto content = payload.find(row._pointer);
    if (!content || !content->_numbers)
        return content ? "none" : "nothing";
    std::string numbers;
    for (const TextNumber& number : *content->_numbers)
        numbers += (numbers.empty() ? "" : " ") + formatTextNumber(number);
    return numbers;
}

TEST(JsonPayload, FindsNumbersInWhatBuildingsAndAppsSend)
{
    const std::string deep(MaxJsonDepth + 1, '['), end(MaxJsonDepth + 1, ']');
    const std::string tooDeep = deep + end, fits = tooDeep.substr(1, tooDeep.size() - 2);
    const PayloadRow rows[] = {
        {"21.5", "", "21.5"},
        {" ON\n", "", "1"},
        {"1, 2 3", "", "1 2 3"},
        {"9007199254740993", "", "9007199254740993"},
        {"-0", "", "0"},
        {"[[1, 2.5], [true, \"off\"]]", "", "1 2.5 1 0"},
        {"{\"z\": 3, \"x\": 1, \"y\": 2}", "", "1 2 3"},
        {"{\"r\": 0.1, \"g\": 0.2, \"b\": 0.3, \"a\": 1}", "", "0.1 0.2 0.3 1"},
        {"{\"x\": 1, \"z\": 3}", "", "none"},
        {"{\"state\": \"ON\", \"n\": {\"t\": [20, 21]}}", "/state", "1"},
        {"{\"state\": \"ON\", \"n\": {\"t\": [20, 21]}}", "/n/t/1", "21"},
        {"{\"state\": \"ON\"}", "/n", "nothing"},
        {"[1]", "/99999999999999999999999", "nothing"},
        {"[1, 2", "/0", "nothing"},
        {"{\"a\": null}", "/a", "none"},
        {"1e999", "", "none"},
        {"hello", "", "none"},
        {"", "", ""},
        {fits.c_str(), "", ""},
        {tooDeep.c_str(), "", "none"},
    };
    for (const PayloadRow& row : rows)
        EXPECT_EQ(numbersOf(row), row._numbers) << row._payload << " " << row._pointer;
}

TEST(JsonPayload, WritesValuesAsTheSettingsSay)
{
    using Vectors = PayloadForm::Vectors;
    using Switches = PayloadForm::Switches;
    const auto numbers = [](std::initializer_list<float> values, std::size_t width, bool isArray = false) {
        TextRecord record;
        record._width = width;
        record._isArray = isArray;
        for (const float value : values)
            record._numbers.push_back(*toTextNumber(value));
        return record;
    };
    TextRecord on = numbers({1}, 1), colour = numbers({0.1F, 1, 0}, 3), text, infinite;
    on._numbers = {*toTextNumber(true)};
    on._isSwitch = colour._isColour = text._isText = true;
    infinite._isFinite = false;
    text._text = "two\n\"words\"";
    const std::tuple<TextRecord, PayloadForm, std::string, std::string> rows[] = {
        {numbers({0.1F}, 1), {}, "", "0.1"},
        {numbers({1, 2, -0.5F}, 3), {}, "", "[1.0,2.0,-0.5]"},
        {numbers({1, 2, 3, 4}, 2, true), {Vectors::Object, {}}, "", "[{\"x\":1.0,\"y\":2.0},{\"x\":3.0,\"y\":4.0}]"},
        {colour, {Vectors::Object, {}}, "/light/color", "{\"light\":{\"color\":{\"b\":0.0,\"g\":1.0,\"r\":0.1}}}"},
        {on, {}, "", "true"},
        {on, {{}, Switches::Number}, "", "1"},
        {on, {{}, Switches::OnOff}, "", "ON"},
        {on, {{}, Switches::OnOff}, "/state", "{\"state\":\"ON\"}"},
        {text, {}, "", "two\n\"words\""},
        {text, {}, "/0", "{\"0\":\"two\\n\\\"words\\\"\"}"},
        {numbers({}, 3, true), {}, "", "[]"},
        {infinite, {}, "", "nothing"},
    };
    for (const auto& [record, form, pointer, expected] : rows)
        EXPECT_EQ(formatPayload(record, pointer, form).value_or("nothing"), expected);
}

} // namespace
} // namespace Trovio::Nodes
