#include "nodes/dds/DdsTopicNames.h"

namespace Trovio::Nodes {

namespace {

constexpr std::size_t longestName = 200;

bool isTopicName(std::string_view name)
{
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    constexpr std::string_view others = "0123456789/";
    return !name.empty() && name.size() <= longestName && letters.find(name.front()) != std::string_view::npos &&
           name.find_first_not_of(std::string(letters) + std::string(others)) == std::string_view::npos;
}

} // namespace

std::vector<ListedSlot> readDdsTopics(const Settings& settings, const char* setting)
{
    return readSlotList(
        settings, setting,
        {isTopicName, "a topic",
         "a letter or _, and up to " + std::to_string(longestName - 1) + " more letters, digits, _ and /"});
}

bool isRosTopicName(std::string_view name)
{
    constexpr std::string_view digits = "0123456789/";
    for (std::size_t slash = 0; slash != std::string_view::npos; slash = name.find('/', slash + 1)) {
        const std::size_t first = slash == 0 ? 0 : slash + 1;
        if (first == name.size() || digits.find(name[first]) != std::string_view::npos)
            return false;
    }
    return name.find("__") == std::string_view::npos;
}

} // namespace Trovio::Nodes
