// Where scenarios come from: the library itself, or a file.
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>

#include "embedded_texts.h"
#include "feature_table.h"
#include "native_path.h"
#include "scenario_reader.h"

namespace simulator {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestFile = std::uintmax_t{1} << 20;

const Scenario* keep(Scenario scenario) {
    static std::mutex mutex;
    // Never destroyed: clients keep pointers to the texts, and may leave cameras open when they exit.
    static auto& kept = *new std::deque<Scenario>;
    const std::lock_guard lock(mutex);
    kept.push_back(std::move(scenario));
    return &kept.back();
}

FoundScenario failure(Result result, const std::string& sentence) {
    return {nullptr, result, sentence};
}

bool isPath(const std::string& name) {
    return name.find_first_of("/\\") != std::string::npos || name.ends_with(".json");
}

FoundScenario readFile(const std::string& name) {
    std::error_code error;
    const fs::path path = nativePath(name);
    if (!fs::exists(path, error)) return failure(Result::NotFound, name + ": there is no such file.");
    if (!fs::is_regular_file(path, error)) return failure(Result::BadParameter, name + ": this is no file.");
    const std::uintmax_t size = fs::file_size(path, error);
    if (!error && size > kLargestFile) {
        return failure(Result::BadParameter, name + ": " + std::to_string(size) +
                                                 " bytes are too many for a scenario; the most is " +
                                                 std::to_string(kLargestFile) + ".");
    }
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (error || !file) return failure(Result::BadParameter, name + ": the file cannot be read.");
    try {
        return {keep(readScenario(text, keptText(name))), Result::Success, {}};
    } catch (const ScenarioError& wrong) {
        const std::string sentence = wrong.what();
        return failure(Result::BadParameter, name + ": " + sentence + (sentence.back() == '.' ? "" : "."));
    }
}

}  // namespace

FoundScenario findScenario(const std::string& name) {
    if (isPath(name)) return readFile(name);
    static std::mutex mutex;
    static auto& read = *new std::map<std::string, const Scenario*>;
    std::string names;
    for (const EmbeddedText& text : embeddedTexts()) {
        if (std::string_view(text.name) == "schema") continue;
        names += (names.empty() ? "" : ", ") + std::string(text.name);
        if (name != text.name) continue;
        const std::lock_guard lock(mutex);
        const Scenario*& known = read[name];
        if (known == nullptr) known = keep(readScenario(text.text(), text.name));
        return {known, Result::Success, {}};
    }
    return failure(Result::NotFound, "there is no scenario \"" + name + "\". There are " + names +
                                         ", and files, whose names end in \".json\".");
}

}  // namespace simulator
