#pragma once

#include "trovio/Inspection.h"
#include <map>
#include <string>
#include <vector>

namespace Trovio::Nodes {

/// The problems of a node's topics while its domain is open: one for each topic, the first that was added.
/// A plain value.
class DdsTopicProblems {
public:
    /// The text is before + topic + after; one that many topics share is told once.
    void add(const std::string& topic, const std::string& before, const std::string& after);

    /// Empty if nothing is wrong with it.
    std::string find(const std::string& topic) const;

    /// A remark on a topic that is no problem.
    void note(const std::string& topic, const std::string& text) { _notes.push_back({topic, text}); }
    const std::vector<RemarkInfo>& getNotes() const { return _notes; }

    /// Of all topics, shortened.
    std::string summary() const;
    bool empty() const { return _ofTopics.empty(); }

private:
    struct Text {
        std::string _before, _after;
        auto operator<=>(const Text&) const = default;
    };
    std::map<std::string, Text> _ofTopics;
    std::map<Text, std::vector<std::string>> _topics; // by what is wrong with them
    std::vector<RemarkInfo> _notes;
};

} // namespace Trovio::Nodes
