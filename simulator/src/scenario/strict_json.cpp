#include "strict_json.h"

#include <algorithm>
#include <set>

namespace simulator {
namespace {

constexpr std::size_t kDeepest = 16;
// An object's keys are searched one by one.
constexpr std::size_t kMostKeys = 1000;

/// Looks a text through without keeping it.
class Strictness : public nlohmann::json_sax<Json> {
  public:
    explicit Strictness(const std::string& text) : m_text(text) {}

    bool null() override { return step(); }
    bool boolean(bool) override { return step(); }
    bool number_integer(std::int64_t) override { return step(); }
    bool number_unsigned(std::uint64_t) override { return step(); }
    bool number_float(double, const std::string&) override { return step(); }
    bool string(std::string&) override { return step(); }
    bool binary(Json::binary_t&) override { return step(); }
    bool start_object(std::size_t) override { return open(false); }
    bool start_array(std::size_t) override { return open(true); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(std::string& name) override {
        Level& level = m_levels.back();
        level.key = name;
        if (!level.keys.insert(name).second) refuse(place(), "the key is there twice");
        if (level.keys.size() > kMostKeys) refuse(place(), "more than 1000 keys in one object");
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const Json::exception& error) override {
        // The reader counts the end of the text as one more character.
        const auto end = m_text.begin() + static_cast<std::ptrdiff_t>(std::min(position, m_text.size()));
        const auto line = std::count(m_text.begin(), end, '\n') + 1;
        const auto begin = std::find(std::make_reverse_iterator(end), m_text.rend(), '\n').base();
        throw ScenarioError("line " + std::to_string(line) + ", column " +
                            std::to_string(std::max<std::ptrdiff_t>(1, end - begin)) + ": " +
                            reason(error.what()));
    }

  private:
    struct Level {
        bool isArray;
        std::size_t index;
        std::string key;
        std::set<std::string> keys;
    };

    /// What the reader says, without its own numbers and places.
    static std::string reason(std::string what) {
        for (const char* prefix : {"] ", ": "}) {
            const std::size_t at = what.find(prefix);
            if (at != std::string::npos) what.erase(0, at + 2);
        }
        constexpr std::size_t kLongest = 200;
        return what.size() > kLongest ? "this is no JSON" : what;
    }

    bool open(bool isArray) {
        step();
        m_levels.push_back({isArray, 0, {}, {}});
        if (m_levels.size() > kDeepest) refuse(place(), "nested more than 16 deep");
        return true;
    }
    bool close() {
        m_levels.pop_back();
        return true;
    }
    bool step() {
        if (!m_levels.empty() && m_levels.back().isArray) ++m_levels.back().index;
        return true;
    }
    Place place() const {
        Place at;
        for (const Level& level : m_levels) {
            if (!level.isArray) {
                if (!level.key.empty()) at /= level.key;
            } else if (level.index > 0) {
                at /= level.index - 1;
            }
        }
        return at;
    }

    const std::string& m_text;
    std::vector<Level> m_levels;
};

}  // namespace

Json parseStrictly(const std::string& text) {
    if (text.find_first_not_of(" \t\r\n") == std::string::npos) throw ScenarioError("the file is empty");
    Strictness strictness(text);
    Json::sax_parse(text, &strictness);
    return Json::parse(text);
}

}  // namespace simulator
