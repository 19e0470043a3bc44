// Four lines: a route's pattern, its target, a label, and the label of a namespace.
#include "fuzz/Fuzz.h"
#include "nodes/osc/address/OscPattern.h"
#include "trovio/Exception.h"
#include "trovio/routing/Pattern.h"
#include <algorithm>

namespace Fuzz {

namespace {

using namespace Trovio;

/// Whether the label matches, worked out in another way: the positions that the pattern read so far can have reached.
bool matchesByTable(std::string_view pattern, std::string_view label)
{
    std::vector<bool> reached(label.size() + 1, false);
    reached[0] = true;
    for (const char element : pattern) {
        std::vector<bool> next(label.size() + 1, false);
        for (std::size_t i = 0; i <= label.size(); ++i)
            if (element == '*')
                next[i] = reached[i] || (i > 0 && next[i - 1]);
            else
                next[i] = i > 0 && reached[i - 1] && label[i - 1] == element;
        reached = std::move(next);
    }
    return reached[label.size()];
}

void checkSubstitution(const Pattern& pattern, std::string_view label, const std::string& target,
                       const std::string& namespaceLabel)
{
    const auto matched = pattern.match(label);
    require(matched.has_value() == matchesByTable(pattern.getText(), label), "a label matches by the rules");
    if (!matched)
        return;
    require(matched->size() == pattern.countStars(), "each star stands for one run");
    const LabelTemplate itself(pattern.getText(), pattern, LabelTemplate::Placeholders::None);
    const auto same = itself.expand(*matched);
    require(same ? *same == label : label.size() > MaxExpandedLength, "what stars stood for makes the label again");
    const LabelTemplate other(target, pattern, LabelTemplate::Placeholders::NamespaceAndSlot);
    const auto expanded = other.expand(*matched, namespaceLabel, label);
    require(!expanded || expanded->size() <= MaxExpandedLength, "labels end at their limit");
}

} // namespace

void runOnce(std::string_view input)
{
    const std::string pattern(takeLine(input)), target(takeLine(input));
    const std::string_view label = takeLine(input);
    try {
        checkSubstitution(Pattern(pattern), label, target, std::string(takeLine(input)));
    } catch (const Exception& refusal) {
        require(!refusal.getMessage().empty(), "a refusal says why");
    }
    const bool means = Nodes::matchesOscPattern(pattern, Nodes::OscAddressMap(label));
    if (!Nodes::isOscPattern(pattern) && pattern.size() <= Nodes::MaxOscAddress)
        require(means == (pattern == label), "an OSC address without a pattern means itself");
    if (pattern.find_first_of("?[]{}") == std::string::npos && label.find('/') == std::string_view::npos &&
        std::max(pattern.size(), label.size()) <= Nodes::MaxOscAddress)
        require(means == matchesByTable(pattern, label), "stars of OSC match as the table says");
}

} // namespace Fuzz
