#include "trovio/routing/Pattern.h"
#include "trovio/Exception.h"
#include <gtest/gtest.h>

using Trovio::LabelTemplate;
using Trovio::Pattern;

namespace {

struct Expansion {
    const char* _name;
    const char* _pattern;
    const char* _target;
    const char* _label;
    std::optional<std::string> _expected; // nothing: the label does not match
};

class PatternExpands : public ::testing::TestWithParam<Expansion> {};

TEST_P(PatternExpands, InTurn)
{
    const auto& row = GetParam();
    const Pattern pattern(row._pattern);
    const LabelTemplate target(row._target, pattern, LabelTemplate::Placeholders::NamespaceAndSlot);
    const std::string label = row._label;
    const auto matched = pattern.match(label);
    EXPECT_EQ(matched ? target.expand(*matched, "N*{SlotLabel}", label) : std::nullopt, row._expected);
}

INSTANTIATE_TEST_SUITE_P(Labels, PatternExpands,
                         ::testing::Values(Expansion{"Literal", "OSC/a", "Wand", "OSC/a", "Wand"},
                                           Expansion{"LiteralLonger", "OSC/a", "Wand", "OSC/ab", {}},
                                           Expansion{"StarTakesSlashesToo", "*", "x/*", "a/b/c", "x/a/b/c"},
                                           Expansion{"StarTakesNothing", "a*b", "<*>", "ab", "<>"},
                                           Expansion{"LastPieceMustEnd", "a*b", "*", "axbc", {}},
                                           Expansion{"EndsMayNotOverlap", "ab*ba", "*", "aba", {}},
                                           Expansion{"EachStarInTurn", "*/*", "*<*", "wand/grip", "wand<grip"},
                                           Expansion{"FirstStarTakesLeast", "*/*", "*", "a/b/c", "a"},
                                           Expansion{"LastStarTakesTheRest", "*/*", "*|*", "a/b/c", "a|b/c"},
                                           Expansion{"AdjacentStars", "**", "*|*", "ab", "|ab"},
                                           Expansion{"MiddlePieceTwice", "*ab*ab", "*|*", "xabyab", "x|y"},
                                           Expansion{"MiddlePieceNeedsRoom", "*ab*ab", "*", "xab", {}},
                                           Expansion{"FewerStarsInTarget", "*/*", "all", "a/b", "all"},
                                           Expansion{"PlaceholdersAreNotExpandedAgain", "*",
                                                     "{NamespaceLabel}/{SlotLabel}", "a*", "N*{SlotLabel}/a*"},
                                           Expansion{"UnknownPlaceholderIsText", "a", "{Nobody}", "a", "{Nobody}"}),
                         [](const auto& row) { return std::string(row.param._name); });

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

TEST(Pattern, MakesNoLabelOverTheLimit)
{
    const Pattern pattern("*");
    const LabelTemplate target("{SlotLabel}{SlotLabel}", pattern, LabelTemplate::Placeholders::NamespaceAndSlot);
    EXPECT_TRUE(target.expand({}, "", std::string(2048, 'a')));
    EXPECT_FALSE(target.expand({}, "", std::string(2049, 'a')));
}

} // namespace
