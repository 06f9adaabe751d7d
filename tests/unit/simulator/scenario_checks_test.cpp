// What is wrong with a scenario file is said, with its place and what is allowed.
#include "scenario_fixture.h"

namespace {

using test_support::scenarioError;
using test_support::ScenarioTest;
using testing::HasSubstr;
using testing::StartsWith;

class ScenarioChecks : public ScenarioTest {
  protected:
    /// The file is refused; its sentence without the name of the file.
    std::string refusal(const std::string& text) const {
        EXPECT_EQ(load(text), VmbErrorBadParameter) << text;
        const std::string start = path() + ": ";
        EXPECT_THAT(scenarioError(), StartsWith(start));
        EXPECT_EQ(scenarioError().back(), '.') << scenarioError();
        return scenarioError().substr(std::min(start.size(), scenarioError().size()));
    }
    std::string refusalOfCamera(const std::string& more) const {
        return refusal(R"({"cameras": [{"model": "Manta_G-033C", )" + more + "}]}");
    }
    std::string refusalOfEvent(const std::string& event) const {
        return refusal(R"({"cameras": [{"model": "Manta_G-033C"}], "events": [)" + event + "]}");
    }
    std::string refusalOfAction(const std::string& action) const {
        return refusalOfEvent(R"({"at": 1, "do": {)" + action + "}}");
    }
};

TEST_F(ScenarioChecks, UnknownKeyWithTheNearestOne) {
    EXPECT_EQ(
        refusal(R"({"camera": []})"),
        "/camera: there is no key \"camera\"; did you mean \"cameras\"? Allowed: $schema, cameras, choices, "
        "description, events, interfaces, seed.");
    EXPECT_THAT(refusalOfCamera(R"("sensor": {"widht": 640})"),
                StartsWith("/cameras/0/sensor/widht: there is no key \"widht\"; did you mean \"width\"? "
                           "Allowed: height, width."));
    EXPECT_THAT(refusalOfCamera(R"("a/b~c": 1)"),
                StartsWith("/cameras/0/a~1b~0c: there is no key \"a/b~c\""));
}

TEST_F(ScenarioChecks, MissingKey) {
    EXPECT_EQ(refusal("{}"), "the whole: the key \"cameras\" is missing.");
    EXPECT_EQ(refusal(R"({"cameras": [{}]})"), "/cameras/0: the key \"model\" is missing.");
    EXPECT_EQ(refusalOfEvent(R"({"at": 1})"), "/events/0: the key \"do\" is missing.");
}

TEST_F(ScenarioChecks, WrongType) {
    EXPECT_EQ(refusal("[]"), "the whole: array is not an object.");
    EXPECT_EQ(refusal(R"({"cameras": {}})"), "/cameras: object is not an array.");
    EXPECT_EQ(refusalOfCamera(R"("count": "2")"), "/cameras/0/count: \"2\" is not a whole number.");
    EXPECT_EQ(refusalOfCamera(R"("count": 2.0)"), "/cameras/0/count: 2.0 is not a whole number.");
    EXPECT_EQ(refusalOfCamera(R"("id": 7)"), "/cameras/0/id: 7 is not a string.");
    EXPECT_EQ(refusalOfCamera(R"("taken": null)"), "/cameras/0/taken: null is not a boolean.");
    EXPECT_EQ(refusal(R"({"cameras": [{"model": 33}]})"), "/cameras/0/model: 33 is not a string.");
    EXPECT_EQ(refusalOfCamera(R"("features": {"Gain": []})"),
              "/cameras/0/features/Gain: array is not a number or a boolean or a string.");
}

TEST_F(ScenarioChecks, NumberOutOfItsRange) {
    EXPECT_EQ(refusalOfCamera(R"("count": 0)"), "/cameras/0/count: 0 is too small; the least is 1.");
    EXPECT_EQ(refusalOfCamera(R"("count": 257)"), "/cameras/0/count: 257 is too large; the most is 256.");
    EXPECT_EQ(refusal(R"({"cameras": [], "seed": -1})"), "/seed: -1 is too small; the least is 0.");
    EXPECT_EQ(refusal(R"({"cameras": [], "seed": 18446744073709551615})"),
              "/seed: 18446744073709551615 is too large; the most is 9007199254740991.");
    EXPECT_EQ(refusal(R"({"cameras": [], "choices": {"FrameIdWidth": 2}})"),
              "/choices/FrameIdWidth: 2 is too large; the most is 1.");
    EXPECT_EQ(refusalOfCamera(R"("scene": {"red": 0})"),
              "/cameras/0/scene/red: 0 is too small; it must be above 0.");
    EXPECT_EQ(refusalOfCamera(R"("sensor": {"width": 100})"),
              "/cameras/0/sensor/width: 100 is not a multiple of 8.");
    EXPECT_EQ(refusalOfEvent(R"({"at": -0.5, "do": {"silenceLine": {}}})"),
              "/events/0/at: -0.5 is too small; the least is 0.");
    EXPECT_EQ(refusalOfEvent(R"({"at": 0, "every": 0.0001, "do": {"silenceLine": {}}})"),
              "/events/0/every: 0.0001 is too small; the least is 0.001.");
}

TEST_F(ScenarioChecks, TooManyCameras) {
    EXPECT_EQ(refusal(R"({"cameras": [{"model": "Mako_G-030B", "count": 200},
                                      {"model": "Mako_G-030B", "count": 57}]})"),
              "/cameras/1: more than 256 cameras.");
}

TEST_F(ScenarioChecks, UnknownNames) {
    EXPECT_EQ(refusal(R"({"cameras": [{"model": "Manta_G-033"}]})"),
              "/cameras/0/model: there is no model \"Manta_G-033\"; did you mean \"Manta_G-033C\"? Allowed: "
              "Mako_G-030B, Manta_G-032B, Manta_G-033C.");
    EXPECT_THAT(refusalOfCamera(R"("features": {"ExposureTime": 5})"),
                HasSubstr("there is no feature \"ExposureTime\"; did you mean \"ExposureTimeAbs\"?"));
    EXPECT_EQ(refusalOfAction(R"("unplugCamera": {"camera": "DEV_000F31A10009"})"),
              "/events/0/do/unplugCamera/camera: there is no camera \"DEV_000F31A10009\"; did you mean "
              "\"DEV_000F31A10001\"? Allowed: DEV_000F31A10001.");
    EXPECT_THAT(refusalOfEvent(R"({"at": 0, "after": "nobody", "do": {"silenceLine": {}}})"),
                StartsWith("/events/0/after: there is no camera \"nobody\". Allowed: DEV_000F31A10001."));
    EXPECT_THAT(refusalOfAction(R"("plugInterface": {"interface": "eth0"})"),
                StartsWith("/events/0/do/plugInterface/interface: there is no interface \"eth0\"."));
    EXPECT_THAT(
        refusalOfAction(R"("unplugCam": {"camera": "DEV_000F31A10001"})"),
        StartsWith("/events/0/do/unplugCam: there is no key \"unplugCam\"; did you mean \"unplugCamera\"? "
                   "Allowed: breakFrames, "));
    EXPECT_EQ(refusalOfAction(R"("failCall": {"function": "VmbCameraOpened", "code": "VmbErrorIO"})"),
              "/events/0/do/failCall/function: there is no function \"VmbCameraOpened\"; did you mean "
              "\"VmbCameraOpen\"? There are 58.");
    EXPECT_THAT(refusalOfAction(R"("failCall": {"function": "VmbCameraOpen", "code": "Timeout"})"),
                StartsWith("/events/0/do/failCall/code: there is no code \"Timeout\"."));
    EXPECT_THAT(refusalOfAction(R"("disturbLine": {"fault": "lost", "first": 1})"),
                HasSubstr("there is no fault \"lost\". Allowed: bouncing, doubled, missing."));
}

TEST_F(ScenarioChecks, ValuesThatAFeatureDoesNotTake) {
    EXPECT_EQ(refusalOfCamera(R"("features": {"Width": 641})"),
              "/cameras/0/features/Width: 641 is not within 8 to 656 in steps of 8.");
    EXPECT_THAT(refusalOfCamera(R"("features": {"ExposureTimeAbs": 1})"),
                HasSubstr(": 1 is not within 30.0 to "));
    EXPECT_THAT(refusalOfCamera(R"("features": {"TriggerMode": "Maybe"})"),
                HasSubstr("\"Maybe\". Allowed: Off, On."));
    EXPECT_EQ(refusalOfCamera(R"("features": {"Width": "640"})"),
              "/cameras/0/features/Width: \"640\" is not a whole number.");
    EXPECT_EQ(refusalOfCamera(R"("features": {"ReverseX": 1})"),
              "/cameras/0/features/ReverseX: 1 is not true or false.");
    EXPECT_EQ(refusalOfCamera(R"("features": {"AcquisitionStart": true})"),
              "/cameras/0/features/AcquisitionStart: a command has no value.");
    EXPECT_THAT(refusalOfCamera(R"("features": {"SensorWidth": 640})"), HasSubstr("an event can force it"));
    EXPECT_THAT(refusalOfCamera(R"("features": {"UserSetDefaultSelector": "1"})"), HasSubstr("an event can"));
    EXPECT_EQ(refusalOfCamera(R"("name": "sixteen letters.")"),
              "/cameras/0/name: \"sixteen letters.\" is too long.");
    EXPECT_THAT(refusalOfAction(R"("forceFeature": {"feature": "Width", "value": 1})"),
                StartsWith("/events/0/do/forceFeature: there is no feature \"Width\""))
        << "the library itself has none";
}

TEST_F(ScenarioChecks, IdentitiesThatAreNone) {
    for (const char* id : {"DEV_000F31A1000", "DEV_000F31A100011", "DEV_000f31a10001", "000F31A10001XXXX"}) {
        EXPECT_EQ(refusalOfCamera(R"("id": ")" + std::string(id) + "\""),
                  "/cameras/0/id: \"" + std::string(id) + "\" is not DEV_ and twelve digits 0 to 9, A to F.");
    }
    for (const char* ip : {"1.2.3", "1.2.3.256", "1.2.3.4.5", "1.2.3.", "a.b.c.d", "1.2.3.4 "}) {
        EXPECT_THAT(refusalOfCamera(R"("ip": ")" + std::string(ip) + "\""),
                    StartsWith("/cameras/0/ip: \"" + std::string(ip) + "\" is not four numbers"));
    }
    EXPECT_EQ(refusalOfCamera(R"("serial": "")"), "/cameras/0/serial: the text is empty.");
    EXPECT_EQ(refusalOfCamera(R"("serial": "5\u00007")"),
              "/cameras/0/serial: the text has control characters.");
    EXPECT_EQ(refusalOfCamera(R"("interface": ")" + std::string(64, 'x') + "\""),
              "/cameras/0/interface: \"" + std::string(59, 'x') + "... is longer than 63 bytes.");
}

TEST_F(ScenarioChecks, IdentitiesThatAreThereTwice) {
    const auto twice = [&](const std::string& what) {
        const std::string camera = R"({"model": "Manta_G-033C", )" + what + "}";
        return refusal(R"({"cameras": [)" + camera + "," + camera + "]}");
    };
    EXPECT_EQ(twice(R"("id": "DEV_000F31A10001")"), "/cameras/1/id: \"DEV_000F31A10001\" is there twice.");
    EXPECT_EQ(twice(R"("serial": "1")"), "/cameras/1/serial: \"1\" is there twice.");
    EXPECT_EQ(twice(R"("ip": "10.0.0.1")"), "/cameras/1/ip: \"10.0.0.1\" is there twice.");
    EXPECT_EQ(refusalOfCamera(R"("count": 2, "id": "DEV_000F31A10001")"),
              "/cameras/0/id: \"DEV_000F31A10001\" is there twice.");
    EXPECT_EQ(refusal(R"({"cameras": [], "interfaces": [{"id": "a"}, {"id": "a"}]})"),
              "/interfaces/1/id: \"a\" is there twice.");
}

TEST_F(ScenarioChecks, WhatDoesNotGoTogether) {
    EXPECT_THAT(refusalOfCamera(R"("line": {"numerator": 100, "widthNs": 2500001})"),
                StartsWith("/cameras/0/line: a rhythm has at most 10^6 Hz, widths from 1 ns to a quarter"));
    EXPECT_THAT(
        refusalOfCamera(R"("pulseFaults": [{"fault": "missing", "first": 1, "count": 3, "every": 2}])"),
        StartsWith("/cameras/0/pulseFaults/0/every: "));
    EXPECT_THAT(refusalOfCamera(R"("count": 20, "errorPpbStep": 100000)"),
                StartsWith("/cameras/0/errorPpbStep: "));
    EXPECT_THAT(refusalOfAction(R"("failCall": {"function": "VmbStartup", "code": "VmbErrorIO", "nth": 0})"),
                StartsWith("/events/0/do/failCall/nth: "));
    EXPECT_EQ(refusalOfEvent(R"({"at": 1, "times": 2, "do": {"silenceLine": {}}})"),
              "/events/0/times: needs \"every\" beside it.");
    EXPECT_EQ(refusalOfAction(""), "/events/0/do: 0 are too few; the least is 1.");
    EXPECT_EQ(refusalOfAction(R"("silenceLine": {}, "plugCamera": {"camera": "DEV_000F31A10001"})"),
              "/events/0/do: 2 are too many; the most is 1.");
}

TEST_F(ScenarioChecks, KeysThatAreThereTwice) {
    EXPECT_EQ(refusal(R"({"cameras": [], "cameras": []})"), "/cameras: the key is there twice.");
    EXPECT_EQ(refusal(R"({"cameras": [{"model": "Manta_G-033C"}, {"model": "x", "model": "Manta_G-033C"}]})"),
              "/cameras/1/model: the key is there twice.");
}

TEST_F(ScenarioChecks, SyntaxWithLineAndColumn) {
    EXPECT_THAT(refusal("{\n  \"cameras\": [],\n}"), StartsWith("line 3, column 1: syntax error"));
    EXPECT_THAT(refusal("{\"cameras\": [] \"seed\": 1}"), StartsWith("line 1, column 21: syntax error"));
    EXPECT_THAT(refusal("{\n\n   // a remark\n}"), StartsWith("line 3, column 4: "));
    EXPECT_THAT(refusal("no JSON"), StartsWith("line 1, column 2: "));
    EXPECT_THAT(refusal("{\"cameras\": []}\n{}"), StartsWith("line 2, column 1: "));
    EXPECT_THAT(refusal("{\"seed\": 1e999}"), StartsWith("line 1, column 14: "));
    EXPECT_THAT(refusal("{\"description\": \"\xff\"}"), StartsWith("line 1, column 18: "));
}

TEST_F(ScenarioChecks, FileThatWasCutOff) {
    const std::string whole = R"({"description": "x", "cameras": [{"model": "Manta_G-033C"}], "seed": 7})";
    ASSERT_EQ(load(whole), VmbErrorSuccess);
    for (std::size_t size = 1; size < whole.size(); ++size) {
        EXPECT_THAT(refusal(whole.substr(0, size)), StartsWith("line 1, column ")) << size;
    }
}

TEST_F(ScenarioChecks, FileWithoutAnything) {
    EXPECT_EQ(refusal(""), "the file is empty.");
    EXPECT_EQ(refusal(" \n\t\r\n"), "the file is empty.");
}

TEST_F(ScenarioChecks, FileOfManyMegabytes) {
    write("");
    std::filesystem::resize_file(path(), 100'000'000);
    EXPECT_EQ(VmbSimLoadScenario(path().c_str()), VmbErrorBadParameter);
    EXPECT_EQ(scenarioError(),
              path() + ": 100000000 bytes are too many for a scenario; the most is 1048576.");
    const std::string scenario = R"({"cameras": []})";
    EXPECT_EQ(load(scenario + std::string(1048576 - scenario.size(), ' ')), VmbErrorSuccess);
    EXPECT_EQ(load(scenario + std::string(1048577 - scenario.size(), ' ')), VmbErrorBadParameter);
}

TEST_F(ScenarioChecks, DeepNesting) {
    EXPECT_THAT(refusal(R"({"description": )" + std::string(500'000, '[')),
                HasSubstr("nested more than 16 deep"));
    std::string objects;
    for (int i = 0; i < 100'000; ++i) objects += R"({"a":)";
    EXPECT_THAT(refusal(objects), HasSubstr("nested more than 16 deep"));
}

TEST_F(ScenarioChecks, VeryManyKeys) {
    std::string keys;
    for (int i = 0; i < 1001; ++i) keys += "\"k" + std::to_string(i) + "\": 1,";
    EXPECT_EQ(refusal("{" + keys + "\"cameras\": []}"), "/k1000: more than 1000 keys in one object.");
}

TEST_F(ScenarioChecks, LongTextsAreNotRepeated) {
    const std::string longText(900'000, 'x');
    EXPECT_LT(refusal("{\"" + longText + "\": 1, \"cameras\": []}").size(), 1'000'000u);
    EXPECT_LT(refusalOfCamera(R"("id": ")" + longText + "\"").size(), 200u);
    EXPECT_LT(refusal("{\"a\": \"" + longText).size(), 200u);
    EXPECT_THAT(
        refusalOfCamera(R"("id": "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxöööööö")"),
        HasSubstr("xxxxxx... is longer"));
}

TEST_F(ScenarioChecks, FileThatIsNotThere) {
    EXPECT_EQ(VmbSimLoadScenario(path("none").c_str()), VmbErrorNotFound);
    EXPECT_EQ(scenarioError(), path("none") + ": there is no such file.");
    EXPECT_EQ(VmbSimLoadScenario("none.json"), VmbErrorNotFound);
    EXPECT_EQ(scenarioError(), "none.json: there is no such file.");
    EXPECT_EQ(VmbSimLoadScenario(R"(C:\none)"), VmbErrorNotFound);
    EXPECT_EQ(VmbSimLoadScenario(m_directory.path().string().c_str()), VmbErrorBadParameter);
    EXPECT_EQ(scenarioError(), m_directory.path().string() + ": this is no file.");
}

TEST_F(ScenarioChecks, WhatWasWrongIsForgottenWithTheNextScenario) {
    ASSERT_EQ(load(R"({"cameras": []})"), VmbErrorSuccess);
    EXPECT_STREQ(VmbSimScenarioName(), path().c_str());
    EXPECT_EQ(VmbSimLoadScenario("nowhere"), VmbErrorNotFound);
    EXPECT_THAT(scenarioError(), StartsWith("there is no scenario \"nowhere\". There are "));
    EXPECT_STREQ(VmbSimScenarioName(), path().c_str()) << "the former one stays";
    char start[9] = "";
    EXPECT_EQ(VmbSimScenarioError(start, sizeof start), scenarioError().size() + 1);
    EXPECT_STREQ(start, "there is");
    EXPECT_EQ(VmbSimLoadScenario("zero-cameras"), VmbErrorSuccess);
    EXPECT_EQ(VmbSimScenarioError(nullptr, 0), 1u);
}

}  // namespace
