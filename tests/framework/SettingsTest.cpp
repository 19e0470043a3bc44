#include "trovio/Settings.h"
#include "tests/support/Says.h"
#include <gtest/gtest.h>

using Trovio::Endpoint;
using Trovio::Setting;
using Trovio::Settings;

namespace {

const std::vector<Setting> table = {
    Setting::text("text", "t", "any"),
    Setting::boolean("flag", "false", "on or off"),
    Setting::integer("count", "3", 1, 16, "how many"),
    Setting::number("rate", "60", 0.5, 1000, "per second"),
    Setting::choice("shape", "sine", "sine|ramp|square", "form"),
    Setting::endpoint("listen", "", "where"),
    Setting::file("file", "", "what"),
};

std::string problemOf(const std::string& text, const std::vector<Setting>& rows = table)
{
    return ::problemOf<Trovio::InvalidFieldException>(
        [&] { const Settings settings(rows, text, Merid::URL("file:/scenes/demo")); });
}

TEST(Settings, DefaultsStandForWhatIsLeftOut)
{
    const Settings settings(table, " \t\n");
    EXPECT_EQ(settings.text("text"), "t");
    EXPECT_EQ(settings.number("rate"), 60.0);
    EXPECT_EQ(settings.choice("shape"), 0U);
    EXPECT_FALSE(settings.flag("flag") || settings.isGiven("rate") || settings.endpoint("listen"));
    EXPECT_EQ(settings.file("file"), "");
}

TEST(Settings, EveryKindIsRead)
{
    const Settings settings(table,
                            R"(count=16 rate=2.5e1 shape=square flag=true file='my maps/50%.png' listen=[::1]:9000)",
                            Merid::URL("file:/scenes/demo"));
    EXPECT_EQ(settings.integer("count"), 16);
    EXPECT_EQ(settings.number("rate"), 25.0);
    EXPECT_EQ(settings.choice("shape"), 2U);
    EXPECT_TRUE(settings.flag("flag"));
    EXPECT_EQ(settings.file("file"), "/scenes/demo/my maps/50%.png");
    EXPECT_EQ(settings.endpoint("listen"), (Endpoint{"::1", 9000}));
    EXPECT_EQ(Settings(table, "listen=:7").endpoint("listen"), (Endpoint{"127.0.0.1", 7}));
    EXPECT_EQ(Settings(table, "listen=7").endpoint("listen"), (Endpoint{"127.0.0.1", 7}));
}

TEST(Settings, QuotesAndEscapes)
{
    const std::pair<const char*, const char*> rows[] = {{R"(text='a "b" c')", R"(a "b" c)"},
                                                        {R"(text="it's")", "it's"},
                                                        {R"(text='it\'s \\ \n')", "it's \\ \n"},
                                                        {R"(text=a=b'c\d)", R"(a=b'c\d)"},
                                                        {"text= rate=1", ""},
                                                        {"text=''", ""},
                                                        {"\ttext=x\n", "x"},
                                                        {R"(text="%s %n {0}")", "%s %n {0}"}};
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(Settings(table, text).text("text"), expected) << text;
}

struct Refusal {
    const char* _text;
    std::vector<const char*> _named; // what the message has to hold
};

TEST(Settings, RefusalsNameSettingValueAndWhatIsAllowed)
{
    const Refusal rows[] = {
        {"speed=9", {"'speed'", "'9'", "count, file, flag, listen, rate, shape, text"}},
        {"rate=0.49", {"'rate'", "'0.49'", "number from 0.5 to 1000"}},
        {"rate=nan", {"'rate'", "'nan'"}},
        {"rate=1x", {"'rate'", "'1x'"}},
        {"count=2.5", {"'count'", "'2.5'", "integer from 1 to 16"}},
        {"count=99999999999999999999", {"'count'"}},
        {"shape=sin", {"'shape'", "'sin'", "one of sine, ramp, square"}},
        {"shape=sine|ramp", {"'shape'"}},
        {"flag=yes", {"'flag'", "true or false"}},
        {"listen=host:65536", {"'listen'", "'host:65536'", "0 to 65535"}},
        {"listen=::1:80", {"'listen'"}},
        {"listen=a/b:80", {"'listen'"}},
        {"file=../x", {"'file'", "'../x'"}},
        {"file=a/../../x", {"'file'"}},
        {"rate=1 rate=2", {"'rate'", "twice", "'1'", "'2'"}},
        {"rate", {"character 1", "no '='", "'rate'"}},
        {"rate =1", {"no '='"}},
        {"=1", {"no name"}},
        {"text='a", {"'text'", "closing '"}},
        {"text='a'b", {"'text'", "blank"}},
        {R"(text="\x")", {"'text'", "escape"}},
        {R"(text="a\)", {"escape"}},
    };
    for (const Refusal& row : rows)
        EXPECT_TRUE(saysAll(problemOf(row._text), row._named)) << row._text;
    EXPECT_NE(problemOf(std::string(65537, ' ')), "");
}

TEST(Settings, OneWithoutDefaultMustBeGiven)
{
    const std::vector<Setting> rows = {Setting::integer("port", nullptr, 1, 65535, "the port of the peer")};
    EXPECT_TRUE(says(problemOf("", rows), "'port' must be given"));
    EXPECT_EQ(problemOf("port=1", rows), "");
}

} // namespace
