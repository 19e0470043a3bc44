#include "merid/URL.h"
#include "tests/support/Says.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace {

using Merid::URL;

using Texts = std::vector<std::pair<std::string, const char*>>;

const auto problemOf = [](auto action) { return ::problemOf<std::invalid_argument>(action); };

TEST(URL, TakesSchemeAndRest)
{
    for (const char* text : {"HTTP://[::1]:80/a?b=c#d", "x-1+2.y:%20", "urn:a:b"})
        EXPECT_EQ(URL(text).str(), text);
    EXPECT_EQ(URL("HTTP://h").scheme(), "http");
}

TEST(URL, RefusesWithPlaceAndCure)
{
    for (const auto& [text, problem] :
         Texts{{"", "does not begin with a scheme"},
               {"noscheme", "does not begin with a scheme"},
               {"1a:x", "does not begin with a scheme"},
               {"file:", "nothing follows the scheme"},
               {"file:a b", "position 6 is not allowed; write it as %20"},
               {"file:\xc3\xa9", "position 5 is not allowed; write it as %C3"},
               {std::string("file:a\0b", 8), "position 6 is not allowed; write it as %00"},
               {"file:a%2", "the % at position 6"},
               {"file:%zz", "the % at position 5"}})
        EXPECT_TRUE(says(problemOf([&text = text] { const URL url(text); }), problem));
    EXPECT_LT(problemOf([] { const URL url(std::string(1'000'000, '!')); }).size(), 500U);
}

TEST(URL, ResolvesBelowTheBase)
{
    struct Row {
        const char *_base, *_relative, *_expected;
    };
    for (const Row& row : {Row{"file:.", "a.txt", "file:./a.txt"}, Row{"file:/s/t", "a/b", "file:/s/t/a/b"},
                           Row{"file:/s/", "a/../b/./c", "file:/s/b/c"}, Row{"file:/s", "a/..", "file:/s/"},
                           Row{"file:/s", "a//b/", "file:/s/a/b/"}, Row{"http://h?q/r#f", "x", "http://h/x"},
                           Row{"file:/s", "...", "file:/s/..."}, Row{"file:?q", "x", "file:./x"}})
        EXPECT_EQ(URL(row._base).resolve(row._relative).str(), row._expected);
}

TEST(URL, NeverLeavesTheBase)
{
    for (const std::string relative : {"..", "../x", "a/../../x", "%2e%2e/x", ".%2E", "a/%2e./../x", "a%2fb", "..%2fx",
                                       "..%5cx", "%00", "/etc", "//h/x", "http:x", "", "a b"})
        EXPECT_NE(problemOf([&relative] { static_cast<void>(URL("file:/s").resolve(relative)); }), "") << relative;
    EXPECT_TRUE(says(problemOf([] { static_cast<void>(URL().resolve("x")); }), "no base URL"));
}

TEST(URL, PathIsTheFileName)
{
    for (const auto& [url, path] :
         Texts{{"file:./a%20b", "./a b"}, {"file:///a", "/a"}, {"file://localhost/a", "/a"}, {"FILE:a", "a"}})
        EXPECT_EQ(URL(url).path(), path);
    for (const char* url : {"http://h/a", "file://other/a", "file:a%00b", "file:a?b", "file://"})
        EXPECT_NE(problemOf([url] { static_cast<void>(URL(url).path()); }), "") << url;
}

} // namespace
