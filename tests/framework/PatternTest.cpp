#include "trovio/routing/Pattern.h"
#include "trovio/Exception.h"
#include <gtest/gtest.h>

using Trovio::LabelTemplate;
using Trovio::Pattern;

namespace {

TEST(PatternExpands, InTurn)
{
    const struct {
        const char *_name, *_pattern, *_target, *_label;
        std::optional<std::string> _expected; // nothing: the label does not match
    } rows[] = {{"Literal", "OSC/a", "Wand", "OSC/a", "Wand"},
                {"LiteralLonger", "OSC/a", "Wand", "OSC/ab", {}},
                {"StarTakesSlashesToo", "*", "x/*", "a/b/c", "x/a/b/c"},
                {"StarTakesNothing", "a*b", "<*>", "ab", "<>"},
                {"LastPieceMustEnd", "a*b", "*", "axbc", {}},
                {"EndsMayNotOverlap", "ab*ba", "*", "aba", {}},
                {"EachStarInTurn", "*/*", "*<*", "wand/grip", "wand<grip"},
                {"FirstStarTakesLeast", "*/*", "*", "a/b/c", "a"},
                {"LastStarTakesTheRest", "*/*", "*|*", "a/b/c", "a|b/c"},
                {"AdjacentStars", "**", "*|*", "ab", "|ab"},
                {"MiddlePieceTwice", "*ab*ab", "*|*", "xabyab", "x|y"},
                {"MiddlePieceNeedsRoom", "*ab*ab", "*", "xab", {}},
                {"FewerStarsInTarget", "*/*", "all", "a/b", "all"},
                {"PlaceholdersAreNotExpandedAgain", "*", "{NamespaceLabel}/{SlotLabel}", "a*", "N*{SlotLabel}/a*"},
                {"UnknownPlaceholderIsText", "a", "{Nobody}", "a", "{Nobody}"}};
    for (const auto& row : rows) {
        const Pattern pattern(row._pattern);
        const LabelTemplate target(row._target, pattern, LabelTemplate::Placeholders::NamespaceAndSlot);
        const std::string label = row._label;
        const auto matched = pattern.match(label);
        EXPECT_EQ(matched ? target.expand(*matched, "N*{SlotLabel}", label) : std::nullopt, row._expected) << row._name;
    }
}

TEST(Pattern, RefusesEmptyLongAndUnbalancedTexts)
{
    const std::pair<std::string, std::string> bad[] = {
        {"", "a"}, {"a", ""}, {std::string(1025, 'a'), "a"}, {"a", std::string(1025, 'a')}, {"a", "*"}, {"*", "**"}};
    for (const auto& [from, to] : bad)
        EXPECT_THROW(LabelTemplate(to, Pattern(from), LabelTemplate::Placeholders::None), Trovio::Exception)
            << from.substr(0, 9) << " -> " << to.substr(0, 9);
    EXPECT_NO_THROW(Pattern(std::string(1024, '*')));
}

TEST(Pattern, HardestTextsAreMatchedInBoundedWork)
{
    std::string stars;
    while (stars.size() < 1020)
        stars += "*a";
    const std::string label(4096, 'a');
    for (int i = 0; i < 1000; ++i) // with backtracking not even one would end
        ASSERT_FALSE(Pattern(stars + "*b*c").match(label));
}

} // namespace
