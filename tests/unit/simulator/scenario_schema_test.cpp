// The schema that editors read is the one that the simulator checks against.
#include <set>

#include <nlohmann/json.hpp>

#include "scenario_fixture.h"

namespace {

using nlohmann::json;
using test_support::readFile;
using test_support::scenarioError;

class ScenarioSchema : public test_support::ScenarioTest {
  protected:
    const json schema = json::parse(readFile(ZELT_SOURCE_DIR "/simulator/scenarios/schema.json"));

    const json& resolved(const json& rules) const {
        if (!rules.contains("$ref")) return rules;
        const std::string target = rules["$ref"];
        return resolved(schema.at(json::json_pointer(target.substr(1))));
    }
    /// A value with every key that the rules describe, or only with those that they require.
    json sample(const json& given, const std::string& key, bool all) const {
        static const std::map<std::string, json> kByKey = {{"camera", "DEV_000F31A10001"},
                                                           {"after", "DEV_000F31A10001"},
                                                           {"interface", "SimulatedNetwork0"},
                                                           {"function", "VmbCameraOpen"},
                                                           {"code", "VmbErrorIO"},
                                                           {"nth", 1},
                                                           {"feature", "Width"},
                                                           {"value", 64},
                                                           {"features", {{"Width", 64}}},
                                                           {"id", "DEV_000F31A10001"},
                                                           {"ip", "10.0.0.1"},
                                                           {"numerator", 10},
                                                           {"denominator", 1},
                                                           {"widthNs", 1000},
                                                           {"errorPpbStep", 0}};
        if (const auto known = kByKey.find(key); known != kByKey.end()) return known->second;
        const json& rules = resolved(given);
        if (rules.contains("enum")) return rules["enum"][0];
        const std::string type = rules["type"];
        if (type == "object") return sampleObject(rules, all);
        if (type == "array") return all ? json::array({sample(rules["items"], "", all)}) : json::array();
        if (type == "boolean") return true;
        if (type == "string") return "text";
        return rules.contains("minimum") ? rules["minimum"] : json(1);
    }
    json sampleObject(const json& rules, bool all) const {
        json object = json::object();
        const bool isChoice = rules.value("maxProperties", 0) == 1;
        for (const auto& [key, member] : rules["properties"].items()) {
            const json required = rules.value("required", json::array());
            const bool isNeeded = std::find(required.begin(), required.end(), key) != required.end();
            if (!all && !isNeeded && !isChoice) continue;
            object[key] = sample(member, key, all);
            if (isChoice) break;
        }
        return object;
    }
    void expectLoads(const json& scenario) {
        EXPECT_EQ(load(scenario.dump()), VmbErrorSuccess) << scenarioError() << "\n" << scenario.dump(1);
    }
    std::set<std::string> keysOf(const json& given) const {
        std::set<std::string> keys;
        for (const auto& [key, member] : resolved(given)["properties"].items()) keys.insert(key);
        return keys;
    }
};

TEST_F(ScenarioSchema, KnowsEveryActionThatTheSimulatorKnowsAndWithTheSameKeys) {
    const json actions = schema["$defs"]["action"]["properties"];
    EXPECT_FALSE(actions.empty());
    for (const auto& [name, rules] : actions.items()) {
        for (const bool all : {false, true}) {
            json call = sample(rules, "", all);
            // The library itself has no such feature as a camera has.
            if (name == "forceFeature") call["camera"] = "DEV_000F31A10001";
            const json event = {{"at", 1}, {"do", {{name, call}}}};
            expectLoads({{"cameras", {{{"model", "Manta_G-033C"}}}}, {"events", {event}}});
        }
    }
}

TEST_F(ScenarioSchema, DescribesAFileWithEveryKey) {
    const json all = sample(schema, "", true);
    EXPECT_EQ(all.size(), schema["properties"].size());
    EXPECT_EQ(all["cameras"][0].size(), schema["$defs"]["camera"]["properties"].size());
    EXPECT_EQ(all["events"][0].size(), schema["$defs"]["event"]["properties"].size());
    expectLoads(all);
    expectLoads(sample(schema, "", false));
}

TEST_F(ScenarioSchema, KnowsEveryModel) {
    for (const json& model : schema["$defs"]["camera"]["properties"]["model"]["enum"]) {
        expectLoads({{"cameras", {{{"model", model}}}}});
        ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
        EXPECT_EQ(test_support::stringOf(open(), "DeviceModelName"), model);
        VmbShutdown();
    }
}

TEST_F(ScenarioSchema, NamesEveryKeyInTheTableForItsReaders) {
    const std::string document = readFile(ZELT_SOURCE_DIR "/simulator/docs/SCENARIOS.md");
    std::set<std::string> keys = keysOf(schema);
    for (const char* group : {"camera", "event", "action", "rhythm", "oscillator", "link", "scene"}) {
        keys.merge(keysOf(schema["$defs"][group]));
    }
    for (const std::string& key : keys) {
        EXPECT_NE(document.find("`" + key + "`"), std::string::npos) << key << " is missing";
    }
}

}  // namespace
