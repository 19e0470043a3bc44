#pragma once

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

/// Whether the text holds the part; a failure shows both.
inline ::testing::AssertionResult says(const std::string& text, std::string_view part)
{
    if (text.find(part) == text.npos)
        return ::testing::AssertionFailure() << "'" << part << "' is missing in: " << text;
    return ::testing::AssertionSuccess() << "'" << part << "' stands in: " << text;
}
/// Whether it holds all of them.
inline ::testing::AssertionResult saysAll(const std::string& text, const std::vector<const char*>& parts)
{
    for (const char* part : parts)
        if (const auto result = says(text, part); !result)
            return result;
    return ::testing::AssertionSuccess();
}

/// The message of what the action throws; empty where it throws nothing.
template <class Problem, class Action>
std::string problemOf(Action&& action)
{
    try {
        action();
    } catch (const Problem& problem) {
        if constexpr (requires { problem.getMessage(); })
            return problem.getMessage();
        else
            return problem.what();
    }
    return {};
}
