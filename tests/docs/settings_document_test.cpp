// docs/SETTINGS.md against the settings of a plug-in made by its creator.
#include <algorithm>
#include <set>

#include <gmock/gmock.h>

#include "channel_config_constraints.h"
#include "markdown.h"
#include "plugin_fixture.h"
#include "zelt_gige_camera_channel_rows.h"
#include "zelt_gige_vmb_api.h"

namespace {

using channel_config::IfChannelConfig;
using config_items::ConfigItemVariant;
using docs_check::codeIn;
using docs_check::codesIn;
using docs_check::Document;
using docs_check::firstPart;
using docs_check::Row;
using ::testing::ElementsAreArray;
using ::testing::IsSubsetOf;
using ::testing::UnorderedElementsAreArray;
using Constraints = std::vector<std::shared_ptr<config_items::IfConfigItemConstraint>>;

constexpr std::uint32_t kColour = 0;
constexpr std::uint32_t kMonochrome = 1;
constexpr std::uint32_t kSentFrames = 0x10000;
constexpr std::uint32_t kReceivedFrames = 0x20000;

std::vector<Row> settingRows(const char* section) {
    return Document("docs/SETTINGS.md").rowsOf(section);
}

/// A row without a key is none of the host's.
bool isCalled(const char* rowKey, const std::string& key) {
    return rowKey != nullptr && key == rowKey;
}

std::vector<std::string> keysOf(const std::vector<Row>& rows) {
    std::vector<std::string> keys;
    for (const Row& row : rows) keys.push_back(codeIn(row.at("Key")));
    return keys;
}

struct TypeWord {
    std::string operator()(const config_items::ScalarConfigItem&) const { return "scalar"; }
    std::string operator()(const config_items::RationalScalarConfigItem&) const { return "rational"; }
    std::string operator()(const config_items::SingleValueConfigItem<std::string>&) const { return "text"; }
    std::string operator()(const config_items::SingleValueConfigItem<bool>&) const { return "switch"; }
    std::string operator()(const config_items::RangeConfigItem<double>&) const { return "range"; }
    std::string operator()(const config_items::InvalidConfigItem&) const { return "invalid"; }
    template <class T>
    std::string operator()(const config_items::SingleValueConfigItem<T>&) const {
        return std::is_enum_v<T> ? "enumeration" : "undocumented";
    }
    template <class T>
    std::string operator()(const T&) const {
        return "undocumented";
    }
};

struct Unit {
    std::string operator()(const config_items::ScalarConfigItem& item) const { return item.m_unit; }
    std::string operator()(const config_items::RationalScalarConfigItem& item) const { return item.m_unit; }
    std::string operator()(const config_items::RangeConfigItem<double>& item) const {
        return item.m_min_unit == item.m_max_unit ? item.m_min_unit : "two units";
    }
    template <class T>
    std::string operator()(const T&) const {
        return {};
    }
};

std::string typeOf(const std::string& key, const ConfigItemVariant& item) {
    const std::string word = boost::apply_visitor(TypeWord(), item);
    return key.rfind("ACTION:", 0) == 0 && word == "switch" ? "action" : word;
}

std::string unitOf(const ConfigItemVariant& item) {
    const std::string unit = boost::apply_visitor(Unit(), item);
    return unit.empty() ? "none" : unit;
}

std::vector<std::string> choicesIn(const Constraints& constraints) {
    using Text = config_items::OptionConstraint<config_items::SingleValueConfigItem<std::string>>;
    using Switch = config_items::OptionConstraint<config_items::SingleValueConfigItem<bool>>;
    std::vector<std::string> choices;
    for (const auto& constraint : constraints) {
        if (const auto* text = dynamic_cast<const Text*>(constraint.get())) {
            choices.push_back(text->getItem().m_value);
        }
        if (const auto* value = dynamic_cast<const Switch*>(constraint.get())) {
            choices.emplace_back(value->getItem().m_value ? "true" : "false");
        }
    }
    return choices;
}

bool hasRange(const Constraints& constraints) {
    return std::any_of(constraints.begin(), constraints.end(), [](const auto& each) {
        return dynamic_cast<const config_items::IfRangeConstraint*>(each.get()) != nullptr;
    });
}

bool isForbiddenWhileAcquiring(const Constraints& constraints) {
    using During = channel_config::ConfigurableDuringAcquisitionConstraint;
    return std::any_of(constraints.begin(), constraints.end(), [](const auto& each) {
        const auto* during = dynamic_cast<const During*>(each.get());
        return during != nullptr && !during->getFlag();
    });
}

bool isReadOnly(const Constraints& constraints) {
    return std::any_of(constraints.begin(), constraints.end(), [](const auto& each) {
        const auto* readOnly = dynamic_cast<const channel_config::ReadOnlyConstraint*>(each.get());
        return readOnly != nullptr && readOnly->getFlag();
    });
}

class SettingsDocument : public test_support::PluginTest {
  protected:
    SettingsDocument() {
        wantFrameCounters(true);
        enumerate();
    }
    /// Whether the setting takes the value that it has.
    bool takesItsValue(std::uint32_t id, const std::string& key) {
        return channel(id)->setItem(key, channel(id)->getItem(key));
    }
    void setMode(std::uint32_t id, const char* mode) {
        EXPECT_TRUE(channel(id)->setItem("CAMERA/TriggerMode",
                                         config_items::SingleValueConfigItem<std::string>(mode)));
    }
    void expectTypesUnitsAndValues(std::uint32_t id, const std::vector<Row>& rows) {
        for (const Row& row : rows) {
            const std::string key = codeIn(row.at("Key"));
            SCOPED_TRACE(key);
            const ConfigItemVariant item = channel(id)->getItem(key);
            const std::string type = row.at("Type");
            EXPECT_EQ(typeOf(key, item), type == "scalar or rational" ? "scalar" : type);
            EXPECT_EQ(unitOf(item), firstPart(row.at("Unit")));
            const Constraints constraints = channel(id)->getConstraints(key);
            const std::vector<std::string> choices = codesIn(row.at("Values"));
            EXPECT_THAT(choicesIn(constraints), UnorderedElementsAreArray(choices));
            EXPECT_EQ(hasRange(constraints), choices.empty() && !row.at("Values").empty());
        }
    }
    void expectChangeability(std::uint32_t id, const std::vector<Row>& rows) {
        std::map<std::string, std::string> found;
        for (const std::string& key : keysOf(rows)) {
            const bool isFixed = isReadOnly(channel(id)->getConstraints(key));
            EXPECT_EQ(takesItsValue(id, key), !isFixed) << key;
            found[key] = isFixed ? "never" : "always";
        }
        start();
        for (auto& [key, changeable] : found) {
            if (changeable == "never") continue;
            const bool isForbidden = isForbiddenWhileAcquiring(channel(id)->getConstraints(key));
            if (isForbidden || !takesItsValue(id, key)) changeable = "not while acquiring";
        }
        stop();
        for (const Row& row : rows) {
            EXPECT_EQ(found[codeIn(row.at("Key"))], firstPart(row.at("Changeable"))) << row.at("Key");
        }
    }
};

TEST_F(SettingsDocument, NamesEveryKeyOfThePluginAndNoOther) {
    const std::vector<Row> rows = settingRows("Plug-in");
    const auto config = plugin->getPluginConfig();
    EXPECT_THAT(config->getKeys(), ElementsAreArray(keysOf(rows)));
    for (const Row& row : rows) {
        const std::string key = codeIn(row.at("Key"));
        SCOPED_TRACE(key);
        const ConfigItemVariant item = config->getItem(key);
        EXPECT_EQ(typeOf(key, item), row.at("Type"));
        EXPECT_EQ(unitOf(item), row.at("Unit"));
        EXPECT_TRUE(config->getConstraints(key).empty());
        EXPECT_EQ(row.at("Values"), "");
        EXPECT_EQ(config->setItem(key, item) ? "always" : "never", row.at("Changeable"));
    }
}

TEST_F(SettingsDocument, NamesEveryKeyOfAColourCameraAndNoOther) {
    EXPECT_THAT(channel(kColour)->getKeys(), ElementsAreArray(keysOf(settingRows("Camera channels"))));
}

TEST_F(SettingsDocument, SaysWhichKeysACameraMayLack) {
    std::vector<std::string> always;
    for (const Row& row : settingRows("Camera channels")) {
        const std::string key = codeIn(row.at("Key"));
        bool mayLack = key.rfind("ACTION:", 0) == 0;
        for (const auto& number : zelt_gige_camera::numberRows()) {
            if (isCalled(number.key, key)) mayLack = number.optional;
        }
        for (const auto& automatic : zelt_gige_camera::autoRows()) mayLack = mayLack || automatic.key == key;
        EXPECT_EQ(row.at("There"), mayLack ? "if the camera has it" : "always") << key;
        if (!mayLack) always.push_back(key);
    }
    const auto found = channel(kMonochrome)->getKeys();
    EXPECT_THAT(always, IsSubsetOf(found));
    EXPECT_THAT(found, IsSubsetOf(keysOf(settingRows("Camera channels"))));
}

TEST_F(SettingsDocument, NamesEveryKeyOfACounterAndNoOther) {
    for (const std::uint32_t counter : {kSentFrames, kReceivedFrames}) {
        EXPECT_THAT(channel(counter)->getKeys(), ElementsAreArray(keysOf(settingRows("Frame counters"))));
    }
}

TEST_F(SettingsDocument, HasTheTypesUnitsAndValuesOfTheSettings) {
    expectTypesUnitsAndValues(kColour, settingRows("Camera channels"));
    for (const std::uint32_t counter : {kSentFrames, kReceivedFrames}) {
        expectTypesUnitsAndValues(counter, settingRows("Frame counters"));
    }
}

TEST_F(SettingsDocument, SaysWhatIsRationalWithExternalTrigger) {
    setMode(kColour, "GIGE/TriggerModeAux");
    aux().setSyncOutAuxFrequency(25, 1);
    for (const Row& row : settingRows("Camera channels")) {
        const std::string key = codeIn(row.at("Key"));
        SCOPED_TRACE(key);
        const ConfigItemVariant item = channel(kColour)->getItem(key);
        const bool isRational = row.at("Type") == "scalar or rational";
        EXPECT_EQ(typeOf(key, item) == "rational", isRational);
        if (isRational) {
            EXPECT_EQ(unitOf(item), firstPart(row.at("Unit")));
        }
        const bool isFixed = row.at("Changeable").find("never") != std::string::npos;
        EXPECT_EQ(isReadOnly(channel(kColour)->getConstraints(key)), isFixed);
    }
}

TEST_F(SettingsDocument, SaysWhenACamerasSettingsCanBeChanged) {
    expectChangeability(kColour, settingRows("Camera channels"));
}

TEST_F(SettingsDocument, SaysWhenACountersSettingsCanBeChanged) {
    expectChangeability(kSentFrames, settingRows("Frame counters"));
}

TEST(SettingsDocumentFeatures, AreThoseOfTheRows) {
    std::set<std::string> documented;
    for (const Row& row : settingRows("Camera channels")) {
        const std::string key = codeIn(row.at("Key"));
        SCOPED_TRACE(key);
        const std::string& cell = row.at("Camera feature");
        documented.insert(key);
        for (const auto& number : zelt_gige_camera::numberRows()) {
            if (isCalled(number.key, key)) {
                EXPECT_EQ(codeIn(cell), number.feature);
            }
        }
        for (const auto& automatic : zelt_gige_camera::autoRows()) {
            if (automatic.key == key || automatic.actionKey == key) {
                EXPECT_EQ(codeIn(cell), automatic.feature);
            }
        }
    }
    for (const auto& number : zelt_gige_camera::numberRows()) {
        if (number.key != nullptr) {
            EXPECT_TRUE(documented.contains(number.key)) << number.key;
        }
    }
}

TEST(SettingsDocumentFeatures, AreFeaturesOfAColourCamera) {
    const test_support::Simulator simulator;
    zelt_gige_api::VimbaCameraApi api;
    ASSERT_TRUE(api.startup());
    api.runCommand(zelt_gige_api::kSystemHandle, "GeVDiscoveryAllOnce");
    const auto camera = api.openCamera(test_support::kColourCamera);
    for (const Row& row : settingRows("Camera channels")) {
        for (const std::string& feature : codesIn(row.at("Camera feature"))) {
            EXPECT_NE(api.getFeatureType(camera, feature.c_str()), zelt_gige_api::FeatureType::None)
                << feature;
        }
    }
    api.closeCamera(camera);
}

}  // namespace
