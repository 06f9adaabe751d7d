#include "settings_file.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

namespace simulator {
namespace {

// Texts are to stay as they are, ends of lines and blanks alone included.
constexpr unsigned kReading = (pugi::parse_default & ~pugi::parse_eol) | pugi::parse_ws_pcdata_single;

constexpr const char* kRoot = "CameraSettings";
constexpr const char* kFeature = "Feature";
constexpr const char* kName = "Name";
constexpr const char* kSelector = "Selector";
constexpr const char* kEntry = "Entry";

/// One value, and where it belongs.
struct Setting {
    const char* feature;
    const char* selector;  ///< empty for none
    const char* entry;
    const char* text;
};

std::vector<Setting> settingsOf(const pugi::xml_node& root) {
    std::vector<Setting> settings;
    for (const pugi::xml_node& node : root.children(kFeature)) {
        settings.push_back({node.attribute(kName).value(), node.attribute(kSelector).value(),
                            node.attribute(kEntry).value(), node.text().get()});
    }
    return settings;
}

bool apply(FeatureModule& module, const Setting& setting) {
    const bool selected =
        *setting.selector == '\0' || module.writeText(setting.selector, setting.entry) == Result::Success;
    return selected && module.writeText(setting.feature, setting.text) == Result::Success;
}

/// What could not be set.
std::vector<Setting> applyAll(FeatureModule& module, std::vector<Setting> settings, std::uint32_t passes) {
    for (std::uint32_t pass = 0; pass < std::max(passes, 1U) && !settings.empty(); ++pass) {
        const std::size_t before = settings.size();
        std::erase_if(settings, [&](const Setting& setting) { return apply(module, setting); });
        if (settings.size() == before) break;
    }
    return settings;
}

}  // namespace

Result saveSettings(FeatureModule& module, const char* file, const PersistSettings& settings) {
    std::vector<StoredFeature> features;
    const Result stored = module.store(features);
    if (stored != Result::Success) return stored;
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(kRoot);
    root.append_attribute("Camera") = module.name();
    root.append_attribute("PersistType") = settings.persistType;
    root.append_attribute("Iterations") = settings.iterations;
    for (const StoredFeature& feature : features) {
        for (const auto& [entry, text] : feature.values) {
            pugi::xml_node node = root.append_child(kFeature);
            node.append_attribute(kName) = feature.row->name;
            if (entry != nullptr) {
                node.append_attribute(kSelector) = feature.row->selector;
                node.append_attribute(kEntry) = entry;
            }
            node.text() = text.c_str();
        }
    }
    return document.save_file(file) ? Result::Success : Result::Other;
}

Result loadSettings(FeatureModule& module, const char* file, const PersistSettings& settings) {
    pugi::xml_document document;
    if (!document.load_file(file, kReading)) return Result::Other;
    const pugi::xml_node root = document.child(kRoot);
    if (!root) return Result::Other;
    std::vector<Setting> all = settingsOf(root);
    // Selectors last: setting what they select moves them.
    const auto isSelector = [&](const Setting& candidate) {
        return std::any_of(all.begin(), all.end(), [&](const Setting& setting) {
            return std::string_view(setting.selector) == candidate.feature;
        });
    };
    std::vector<Setting> selectors;
    std::copy_if(all.begin(), all.end(), std::back_inserter(selectors), isSelector);
    std::vector<Setting> others;
    std::copy_if(all.begin(), all.end(), std::back_inserter(others), std::not_fn(isSelector));
    const bool othersSet = applyAll(module, others, settings.iterations).empty();
    const bool selectorsSet = applyAll(module, selectors, settings.iterations).empty();
    return othersSet && selectorsSet ? Result::Success : Result::Incomplete;
}

}  // namespace simulator
