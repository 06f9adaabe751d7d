/// A matcher for texts in which a regular expression is found. GoogleTest's own knows neither groups nor
/// classes of characters on Windows.
#pragma once

#include <regex>
#include <string>

#include <gmock/gmock.h>

namespace test_support {

MATCHER_P(FindsRegex, pattern, "has \"" + std::string(pattern) + "\" in it") {
    return std::regex_search(std::string(arg), std::regex(pattern));
}

}  // namespace test_support
