#include "nodes/dds/watch/DdsTopicProblems.h"

#include "nodes/shared/ShortList.h"

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxNamed = 3; // topics, and texts, that a summary names

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
        texts.push_back(text._before + shortList(topics, maxNamed, ", ") + text._after);
    return shortList(texts, maxNamed, "; ");
}

} // namespace Trovio::Nodes
