#include "nodes/osc/packet/OscGuess.h"

#include "nodes/osc/address/OscItemReader.h"
#include "nodes/osc/packet/OscElement.h"
#include "nodes/osc/packet/OscTags.h"
#include "osg/LogText.h"
#include <algorithm>
#include <vector>

namespace Trovio::Nodes {

namespace {

constexpr double unitTolerance = 0.01;             // senders round
constexpr std::size_t maxTexts = 16, maxFixed = 2; // in front; of them in the entry, whose label has an end
constexpr std::size_t maxMixed = 24;               // arguments of several kinds

bool isOneOf(char tag, std::string_view tags)
{
    return tags.find(tag) != std::string_view::npos;
}

std::string withoutBrackets(std::string_view tags)
{
    std::string plain(tags);
    std::erase_if(plain, [](char tag) { return tag == '[' || tag == ']'; });
    return plain;
}

/// How many arguments in front choose: texts that numbers follow, or one whole number that floats follow.
std::size_t countChoice(std::string_view plain)
{
    const std::size_t texts = std::min(plain.find_first_not_of("sS"), plain.size());
    const std::string_view rest = plain.substr(texts);
    if (texts != 0)
        return texts <= maxTexts && !rest.empty() && isOneOf(rest.front(), "ihfdTF") ? texts : 0;
    const bool isNumbered =
        plain.size() > 1 && isOneOf(plain.front(), "ih") && plain.find_first_not_of("fd", 1) == std::string_view::npos;
    return isNumbered ? 1 : 0;
}

/// An item that this argument fits, "_" where its text cannot stand in an entry, or not be shown as it is.
std::string itemFor(const OscArgument& argument)
{
    if (argument._tag == 'i')
        return "i:" + std::to_string(argument.asInt32());
    if (argument._tag == 'h')
        return "h:" + std::to_string(argument.asInt64());
    const std::string text(argument.asText());
    const std::string item = text.find_first_of(" ,") == std::string::npos ? "s:" + text : "s:\"" + text + "\"";
    const bool isPlain = text.find('"') == std::string::npos && osg::escapeControls(text) == text;
    return isPlain && readOscItem(item) ? item : "_";
}

bool isReal(std::string_view tags)
{
    return !tags.empty() && tags.find_first_not_of("fd") == std::string_view::npos;
}

std::string vectorFor(std::string_view tags)
{
    return tags.find('d') == std::string_view::npos ? "Vec3f" : "Vec3d";
}

/// The slot types that take them one behind the other; none where nothing does.
std::vector<std::string> typesFor(std::string_view tags)
{
    if (isReal(tags) && (tags.size() == 6 || tags.size() == 7))
        return {vectorFor(tags), tags.size() == 6 ? vectorFor(tags) : "Rotation"};
    const std::string type = guessSlotType(tags);
    return type.empty() || type.ends_with("[]") ? std::vector<std::string>() : std::vector<std::string>{type};
}

} // namespace

std::string OscGuess::findChoice(const OscMessage& message)
{
    std::string choice;
    OscArguments arguments = message.getArguments();
    const std::size_t count = countChoice(withoutBrackets(message._tags));
    for (std::size_t i = 0; i < count; ++i)
        if (const auto argument = arguments.next())
            choice += (choice.empty() ? "" : " ") + (i < maxFixed ? itemFor(*argument) : "_");
    return choice;
}

void OscGuess::note(const OscMessage& message)
{
    const std::string plain = withoutBrackets(message._tags);
    const std::size_t chosenBy = countChoice(plain);
    const std::string tags = plain.substr(chosenBy);
    if (tags != _tags)
        *this = {};
    _tags = tags;
    _chosenBy = chosenBy;
    _choice = findChoice(message);
    if (_tags.size() != 4 || _tags.find_first_not_of("fd") != std::string::npos)
        return;
    OscArguments arguments = message.getArguments();
    for (std::size_t i = 0; i < chosenBy; ++i)
        arguments.next();
    double squares = 0.0, number = 0.0;
    while (readOscNumber(arguments, number)) {
        squares += number * number;
        _isColour = _isColour && number >= 0.0 && number <= 1.0;
    }
    _isUnit = _isUnit && std::abs(std::sqrt(squares) - 1.0) <= unitTolerance;
}

std::string OscGuess::getSlots() const
{
    const std::string vector = vectorFor(_tags);
    if (isReal(_tags) && _tags.size() == 4 && _isUnit)
        return "Rotation";
    if (isReal(_tags) && _tags.size() == 4 && _isColour)
        return "ColorRGBA";
    if (isReal(_tags) && _tags.size() == 6)
        return vector + ":position " + vector + ":angles";
    if (isReal(_tags) && _tags.size() == 7)
        return vector + ":position Rotation:rotation";
    const std::string type = guessSlotType(_tags);
    return type.empty() ? getMixedSlots() : type;
}

/// Numbers in a row are one value or a pose, anything else is a value by itself.
std::string OscGuess::getMixedSlots() const
{
    if (_tags.size() > maxMixed)
        return {};
    std::vector<std::string> types; // or "_"
    for (std::size_t at = 0, count = 0; at < _tags.size(); at += count) {
        count = std::max<std::size_t>(1, std::min(_tags.find_first_not_of("ihfd", at), _tags.size()) - at);
        const auto taking = typesFor(std::string_view(_tags).substr(at, count));
        types.insert(types.end(), taking.begin(), taking.end());
        types.resize(types.size() + (taking.empty() ? count : 0), "_");
    }
    const auto slots = types.size() - static_cast<std::size_t>(std::ranges::count(types, "_"));
    std::string text;
    std::size_t number = 0;
    for (const std::string& type : types) {
        const bool isNamed = type != "_" && slots > 1;
        text += (text.empty() ? "" : " ") + type + (isNamed ? ":value" + std::to_string(++number) : "");
    }
    return slots == 0 ? std::string() : text;
}

const char* OscGuess::getTitle() const
{
    return guessSlotType(_tags).empty() ? "no slot type takes all of it; a guess of its parts: " : "a guess: ";
}

std::string OscGuess::getItems(bool isFixed) const
{
    std::string items = isFixed ? _choice : std::string();
    for (std::size_t i = 0; !isFixed && i < _chosenBy; ++i)
        items += i == 0 ? "_" : " _";
    const std::string slots = getSlots();
    return slots.empty() ? slots : items + (items.empty() ? "" : " ") + slots;
}

std::string quoteOscEntries(std::string_view entries)
{
    std::string quoted;
    for (const char character : entries)
        quoted += (character == '\'' || character == '\\' ? "\\" : "") + std::string(1, character);
    return "in='" + quoted + "'";
}

} // namespace Trovio::Nodes
