#include "nodes/dds/watch/DdsTopicProblems.h"

#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxNamed = 3; // topics, and texts, that a summary names

/// The first few, and how many more there are.
std::string listOf(const std::vector<std::string>& parts, const std::string& separator)
{
    std::string list;
    for (std::size_t i = 0; i < std::min(parts.size(), maxNamed); ++i)
        list += (i > 0 ? separator : "") + parts[i];
    return parts.size() > maxNamed ? list + " and " + std::to_string(parts.size() - maxNamed) + " more" : list;
}

} // namespace

void DdsTopicProblems::add(const std::string& topic, const std::string& before, const std::string& after)
{
    if (_ofTopics.insert({topic, {before, after}}).second)
        _topics[{before, after}].push_back(topic);
}

std::string DdsTopicProblems::find(const std::string& topic) const
{
    const auto found = _ofTopics.find(topic);
    return found == _ofTopics.end() ? std::string() : found->second._before + topic + found->second._after;
}

std::string DdsTopicProblems::summary() const
{
    std::vector<std::string> texts;
    for (const auto& [text, topics] : _topics)
        texts.push_back(text._before + listOf(topics, ", ") + text._after);
    return listOf(texts, "; ");
}

} // namespace Trovio::Nodes
