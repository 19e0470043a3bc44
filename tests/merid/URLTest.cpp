#include "merid/URL.h"

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace {

using Merid::URL;

std::string problemOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const std::invalid_argument& problem) {
        return problem.what();
    }
    return {};
}

TEST(URL, TakesSchemeAndRest)
{
    for (const char* text : {"file:.", "HTTP://[::1]:80/a?b=c#d", "x-1+2.y:%20", "urn:a:b"})
        EXPECT_EQ(URL(text).str(), text);
    EXPECT_EQ(URL("HTTP://h").scheme(), "http");
    EXPECT_EQ(URL("urn:a:b").rest(), "a:b");
}

TEST(URL, RefusesWithPlaceAndCure)
{
    struct Row {
        std::string _text;
        const char* _problem;
    };
    for (const Row& row : std::vector<Row>{{"", "does not begin with a scheme"},
                                           {"noscheme", "does not begin with a scheme"},
                                           {"1a:x", "does not begin with a scheme"},
                                           {"a b:x", "does not begin with a scheme"},
                                           {"file:", "nothing follows the scheme"},
                                           {"file:a b", "position 6 is not allowed; write it as %20"},
                                           {"file:\xc3\xa9", "position 5 is not allowed; write it as %C3"},
                                           {std::string("file:a\0b", 8), "position 6 is not allowed; write it as %00"},
                                           {"file:a%2", "the % at position 6"},
                                           {"file:%zz", "the % at position 5"}})
        EXPECT_NE(problemOf([&row] { const URL url(row._text); }).find(row._problem), std::string::npos) << row._text;
    EXPECT_LT(problemOf([] { const URL url(std::string(1'000'000, '!')); }).size(), 500U);
}

TEST(URL, ResolvesBelowTheBase)
{
    struct Row {
        const char* _base;
        const char* _relative;
        const char* _expected;
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
    EXPECT_NE(problemOf([] { static_cast<void>(URL().resolve("x")); }).find("no base URL"), std::string::npos);
}

TEST(URL, PathIsTheFileName)
{
    struct Row {
        const char* _url;
        const char* _path; // null: refused
    };
    for (const Row& row : {Row{"file:./a%20b", "./a b"}, Row{"file:///a", "/a"}, Row{"file://localhost/a", "/a"},
                           Row{"FILE:a", "a"}, Row{"http://h/a", nullptr}, Row{"file://other/a", nullptr},
                           Row{"file:a%00b", nullptr}, Row{"file:a?b", nullptr}, Row{"file://", nullptr}}) {
        if (row._path)
            EXPECT_EQ(URL(row._url).path(), row._path);
        else
            EXPECT_THROW(static_cast<void>(URL(row._url).path()), std::invalid_argument) << row._url;
    }
}

} // namespace
