#include "host/Escape.h"
#include "host/LiveTable.h"
#include "host/NearestName.h"
#include "host/SceneURL.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

using namespace Host;

namespace {

TEST(Escape, LeavesNothingThatATerminalObeys)
{
    const std::pair<std::string, const char*> rows[] = {{"plain ä€😀", "plain ä€😀"},
                                                        {"a\nb\t", "a\\nb\\t"},
                                                        {std::string("\0\x7f", 2), "\\x00\\x7f"},
                                                        {"\xc2\x9b"
                                                         "2J",
                                                         "\\xc2\\x9b2J"},
                                                        {"\xc0\xaf", "\\xc0\\xaf"},
                                                        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},
                                                        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},
                                                        {"\xe2\x82", "\\xe2\\x82"}};
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(escaped(text), expected);
    EXPECT_EQ(escaped(std::string(100, 'x'), 3), "xxx…");
}

TEST(NearestName, FindsWhatWasMeant)
{
    constexpr std::string_view known[] = {"SFVec3f", "MFVec3f", "label"};
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"sfvec3f", "SFVec3f"}, {"MFVec3", "MFVec3f"}, {"lable", "label"}, {"completely", ""}, {"", ""}};
    for (const auto& [found, nearest] : rows)
        EXPECT_EQ(nearestName(found, known), nearest);
    EXPECT_EQ(nearestName(std::string(10'000, 'l'), known), "");
}

TEST(LiveTable, FitsIntoTheTerminal)
{
    const std::vector<TableRow> rows = {{"wand", "SFVec3f", "0 1.6 0", 60, 0.04},
                                        {"grün", "SFFloat", "1", 0, -1},
                                        {"text", "SFString", std::string(200, 'x'), 0.5, 1234}};
    EXPECT_EQ(renderTable(rows, 60, 10), "sensor  type      value                   values/s       age\n"
                                         "wand    SFVec3f   0 1.6 0                     60.0     0.0 s\n"
                                         "grün    SFFloat   1                            0.0         -\n"
                                         "text    SFString  xxxxxxxxxxxxxxxxxxxxx…       0.5    1234 s\n");
    EXPECT_EQ(renderTable(rows, 30, 3), "sensor  type        values/s …\n"
                                        "wand    SFVec3f         60.0 …\n"
                                        "and 2 more\n");
    for (std::size_t width = 0; width < 80; ++width)
        for (std::size_t height = 0; height < 6; ++height) {
            const std::string table = renderTable(rows, width, height);
            EXPECT_LE(static_cast<std::size_t>(std::ranges::count(table, '\n')), std::max<std::size_t>(height, 2));
        }
}

TEST(SceneURL, StartsAtTheFolderOfTheScene)
{
    EXPECT_EQ(sceneURL("file:.", "/a b/ä/s.toml").path(), "/a b/ä/");
    EXPECT_EQ(sceneURL("file:data/x", "/s/s.toml").path(), "/s/data/x");
    EXPECT_EQ(sceneURL("file:///data", "/s/s.toml").path(), "/data");
    EXPECT_EQ(sceneURL("http://h/p", "/s/s.toml").str(), "http://h/p");
    EXPECT_EQ(sceneURL("file:.", "s.toml").path(), (std::filesystem::current_path() / "").string());
    EXPECT_THROW(sceneURL("no url", "s.toml"), std::invalid_argument);
}
} // namespace
