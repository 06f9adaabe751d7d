/// JSON as the host's commands write it.
#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace host {

using nlohmann::ordered_json;

/// Indented text with a line end. Texts come from cameras too; a broken one must not cost the whole result.
inline std::string dumpJson(const ordered_json& json) {
    return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

inline ordered_json orNull(const std::string& text) {
    return text.empty() ? ordered_json(nullptr) : ordered_json(text);
}

template <class Number>
ordered_json orNull(const std::optional<Number>& value) {
    return value ? ordered_json(*value) : ordered_json(nullptr);
}

}  // namespace host
