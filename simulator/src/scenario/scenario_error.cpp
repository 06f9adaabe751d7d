#include "scenario_error.h"

#include <algorithm>
#include <numeric>

namespace simulator {
namespace {

constexpr std::size_t kLongestQuote = 60;
constexpr std::size_t kLongestList = 24;

std::string shortened(std::string_view text) {
    if (text.size() <= kLongestQuote) return std::string(text);
    std::size_t end = kLongestQuote;
    // Not within a character of several bytes.
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return std::string(text.substr(0, end)) + "...";
}

/// How many letters must be put in, left out or replaced to make one word of the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

/// Empty when none is near.
std::string nearest(std::string_view name, const std::vector<std::string>& allowed) {
    if (name.size() > kLongestQuote) return {};
    std::string best;
    std::size_t least = std::max<std::size_t>(2, name.size() / 3) + 1;
    for (const std::string& candidate : allowed) {
        // A word that was left unfinished is nearer than one with other letters.
        const std::size_t far = candidate.starts_with(name) ? 1 : distance(name, candidate);
        if (far >= least) continue;
        least = far;
        best = candidate;
    }
    return best;
}

std::string listed(std::vector<std::string> allowed) {
    if (allowed.empty()) return "None is allowed.";
    if (allowed.size() > kLongestList) return "There are " + std::to_string(allowed.size()) + ".";
    std::sort(allowed.begin(), allowed.end());
    std::string text = "Allowed:";
    for (const std::string& name : allowed) text += (text.back() == ':' ? " " : ", ") + name;
    return text + ".";
}

}  // namespace

std::string inQuotes(std::string_view text) {
    return '"' + shortened(text) + '"';
}

std::string written(const Json& value) {
    return value.is_structured() ? value.type_name() : shortened(value.dump());
}

void refuse(const Place& at, const std::string& what) {
    const std::string place = at.to_string();
    throw ScenarioError((place.empty() ? "the whole" : place) + ": " + what);
}

void refuseUnknown(const Place& at, const std::string& kind, std::string_view name,
                   const std::vector<std::string>& allowed) {
    const std::string near = nearest(name, allowed);
    refuse(at, "there is no " + kind + " " + inQuotes(name) +
                   (near.empty() ? ". " : "; did you mean \"" + near + "\"? ") + listed(allowed));
}

}  // namespace simulator
