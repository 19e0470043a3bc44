#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "scene/file/SceneURL.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace Explain;
using namespace Scenes;

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
    constexpr std::string_view known[] = {"SFVec3f", "MFVec3f", "label", "a"};
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"sfvec3f", "SFVec3f"}, {"MFVec3", "MFVec3f"}, {"lable", "label"}, {"completely", ""}, {"[", ""}, {"", ""}};
    for (const auto& [found, nearest] : rows)
        EXPECT_EQ(nearestName(found, known), nearest);
    EXPECT_EQ(nearestName(std::string(10'000, 'l'), known), "");
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
