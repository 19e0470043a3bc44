#include "trovio/routing/Pattern.h"

#include "trovio/Exception.h"
#include <algorithm>
#include <array>

namespace Trovio {

namespace {

void checkText(const std::string& text, const char* what)
{
    if (text.empty())
        throw Exception(std::string(what) + " is empty; give a label, or '*' for all");
    if (text.size() > MaxLabelLength)
        throw Exception(std::string(what) + " '" + text.substr(0, 40) + "...' has " + std::to_string(text.size()) +
                        " bytes; allowed are " + std::to_string(MaxLabelLength));
}

std::vector<std::string> splitAtStars(const std::string& text)
{
    std::vector<std::string> pieces(1);
    for (const char character : text) {
        if (character == '*')
            pieces.emplace_back();
        else
            pieces.back() += character;
    }
    return pieces;
}

} // namespace

Pattern::Pattern(const std::string& text) : _text(text), _pieces(splitAtStars(text))
{
    checkText(text, "route pattern");
}

std::optional<std::vector<std::string_view>> Pattern::match(std::string_view label) const
{
    std::vector<std::string_view> matched;
    if (isLiteral())
        return label == _text ? std::optional(matched) : std::nullopt;
    const std::string& first = _pieces.front();
    const std::string& last = _pieces.back();
    if (label.size() < first.size() + last.size() || !label.starts_with(first) || !label.ends_with(last))
        return std::nullopt;
    const std::string_view middle = label.substr(0, label.size() - last.size());
    std::size_t position = first.size();
    for (std::size_t i = 1; i + 1 < _pieces.size(); ++i) {
        const std::size_t found = middle.find(_pieces[i], position);
        if (found == std::string_view::npos)
            return std::nullopt;
        matched.push_back(middle.substr(position, found - position));
        position = found + _pieces[i].size();
    }
    matched.push_back(middle.substr(position));
    return matched;
}

LabelTemplate::LabelTemplate(const std::string& text, const Pattern& pattern, Placeholders placeholders) : _text(text)
{
    checkText(text, "route target");
    const auto stars = static_cast<std::size_t>(std::count(text.begin(), text.end(), '*'));
    if (stars > pattern.countStars())
        throw Exception("route target '" + text + "' has " + std::to_string(stars) + " '*', but its pattern '" +
                        pattern.getText() + "' only " + std::to_string(pattern.countStars()));

    static constexpr std::array<std::pair<std::string_view, Part>, 3> names{
        {{"*", Part::Star}, {"{NamespaceLabel}", Part::NamespaceLabel}, {"{SlotLabel}", Part::SlotLabel}}};
    const std::size_t known = placeholders == Placeholders::None ? 1 : names.size();
    for (std::string_view rest = text; !rest.empty();) {
        const auto* found = std::find_if(names.begin(), names.begin() + known,
                                         [rest](const auto& name) { return rest.starts_with(name.first); });
        const bool literal = found == names.begin() + known;
        if (literal)
            appendLiteral(rest.front());
        else
            _tokens.push_back({found->second, {}});
        rest.remove_prefix(literal ? 1 : found->first.size());
    }
}

void LabelTemplate::appendLiteral(char character)
{
    if (_tokens.empty() || _tokens.back()._part != Part::Literal)
        _tokens.push_back({Part::Literal, {}});
    _tokens.back()._literal += character;
}

std::optional<std::string> LabelTemplate::expand(const std::vector<std::string_view>& matched,
                                                 std::string_view namespaceLabel, std::string_view slotLabel) const
{
    std::string label;
    label.reserve(_text.size() + namespaceLabel.size() + slotLabel.size()); // seldom less than what it becomes
    std::size_t star = 0;
    for (const Token& token : _tokens) {
        switch (token._part) {
        case Part::Literal:
            label += token._literal;
            break;
        case Part::Star:
            label += matched[star++];
            break;
        case Part::NamespaceLabel:
            label += namespaceLabel;
            break;
        case Part::SlotLabel:
            label += slotLabel;
            break;
        }
        if (label.size() > MaxExpandedLength)
            return std::nullopt;
    }
    return label;
}

} // namespace Trovio
