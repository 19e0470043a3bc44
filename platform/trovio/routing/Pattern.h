#pragma once

#include "trovio/Namespace.h"
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Trovio {

/// Bytes of the longest label that routes may make of others, level by level.
constexpr std::size_t MaxExpandedLength = 4096;

/// A label in which '*' stands for any run of characters, none and '/' too.
class Pattern {
public:
    /// Throws Exception for a text that is empty or longer than MaxLabelLength.
    explicit Pattern(const std::string& text);

    const std::string& getText() const { return _text; }
    std::size_t countStars() const { return _pieces.size() - 1; }
    bool isLiteral() const { return countStars() == 0; }

    /// What each '*' stands for in label, in order; nothing where label does not match. Every '*' but the last takes
    /// as little as it can. Goes through the label once, whatever the pattern. The results refer to label.
    std::optional<std::vector<std::string_view>> match(std::string_view label) const;

private:
    std::string _text;
    std::vector<std::string> _pieces; // what stands between the stars, at least one
};

/// The target of a route: replaces each '*' by what the pattern's '*' stood for, in turn.
class LabelTemplate {
public:
    enum class Placeholders { None, NamespaceAndSlot };

    /// Throws Exception for a text that is empty, longer than MaxLabelLength, or has more '*' than pattern.
    LabelTemplate(const std::string& text, const Pattern& pattern, Placeholders placeholders);

    const std::string& getText() const { return _text; }

    /// Nothing where the label would be longer than MaxExpandedLength. What is put in is not expanded again.
    std::optional<std::string> expand(const std::vector<std::string_view>& matched,
                                      std::string_view namespaceLabel = {}, std::string_view slotLabel = {}) const;

private:
    enum class Part { Literal, Star, NamespaceLabel, SlotLabel };
    struct Token {
        Part _part;
        std::string _literal;
    };

    void appendLiteral(char character);

    std::string _text;
    std::vector<Token> _tokens;
};

} // namespace Trovio
