/// What is wrong with a scenario, and where.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace simulator {

/// Keeps the order of the file: features are set in it.
using Json = nlohmann::ordered_json;
/// Where a value lies, as "/cameras/0/id".
using Place = Json::json_pointer;

class ScenarioError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

[[noreturn]] void refuse(const Place& at, const std::string& what);

/// `kind` is what the name should be one of: "camera", "key".
[[noreturn]] void refuseUnknown(const Place& at, const std::string& kind, std::string_view name,
                                const std::vector<std::string>& allowed);

/// A text of the file as it may stand in a sentence: in quotes, and not too long.
std::string inQuotes(std::string_view text);

/// A value of the file as it may stand in a sentence.
std::string written(const Json& value);

}  // namespace simulator
