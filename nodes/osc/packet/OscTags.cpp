#include "nodes/osc/packet/OscTags.h"

#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxShown = 64;

bool consistsOf(std::string_view tags, std::string_view allowed)
{
    return tags.find_first_not_of(allowed) == std::string_view::npos;
}

std::string guessOfNumbers(std::string_view tags)
{
    const bool isFloat = consistsOf(tags, "f");
    const std::string letter = isFloat ? "f" : "d";
    switch (tags.size()) {
    case 2:
    case 3:
    case 4:
        return "Vec" + std::to_string(tags.size()) + letter;
    case 9:
        return "Matrix3" + letter;
    case 16:
        return "Matrix4" + letter;
    default:
        const std::string element = isFloat ? "Float" : consistsOf(tags, "ih") ? "Long" : "Double";
        return tags.size() == 1 ? element : element + "[]";
    }
}

} // namespace

std::string shortenOscTags(std::string_view tags)
{
    if (tags.empty())
        return "no arguments";
    return std::string(tags.substr(0, maxShown)) + (tags.size() > maxShown ? "…" : "");
}

std::string describeOscTags(std::string_view tags)
{
    return tags.empty() ? shortenOscTags(tags) : "(" + shortenOscTags(tags) + ")";
}

std::string guessSlotType(std::string_view tags)
{
    std::string plain(tags);
    std::erase_if(plain, [](char tag) { return tag == '[' || tag == ']'; });
    constexpr std::string_view numbers = "ihfd";
    if (plain.empty())
        return {};
    if (consistsOf(plain, numbers))
        return guessOfNumbers(plain);
    if (plain.size() == 4 && plain.back() == 'b' && consistsOf(plain.substr(0, 3), numbers))
        return "Image";
    const struct {
        const char *_tags, *_type;
    } rows[] = {{"TFIN", "Bool"}, {"sSb", "String"}, {"t", "Time"}, {"r", "ColorRGBA"}};
    for (const auto& row : rows)
        if (consistsOf(plain, row._tags))
            return std::string(row._type) + (plain.size() == 1 ? "" : "[]");
    return {};
}

} // namespace Trovio::Nodes
