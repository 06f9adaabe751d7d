// Which cameras there are.
#include <algorithm>
#include <cstdlib>

#include "simulator_fixture.h"
#include "temporary_directory.h"
#include "test_system.h"

namespace {

using test_support::intOf;
using test_support::kColourCamera;
using test_support::SimulatorTest;
using testing::AllOf;
using testing::EndsWith;
using testing::ResultOf;
using testing::StartsWith;

TEST_F(SimulatorTest, AScenarioIsNotLoadedWhileTheLibraryIsStarted) {
    EXPECT_STREQ(VmbSimScenarioName(), "two-cameras");
    EXPECT_EQ(VmbSimLoadScenario("zero-cameras"), VmbErrorInvalidCall);
    EXPECT_EQ(VmbSimLoadScenario("three-cameras"), VmbErrorNotFound);
    EXPECT_EQ(VmbSimLoadScenario(nullptr), VmbErrorBadParameter);
    EXPECT_STREQ(VmbSimScenarioName(), "two-cameras");
}

TEST_F(SimulatorTest, AScenarioStartsEverythingAfresh) {
    test_support::setInt(open(), "Width", 320);
    VmbSimUnplugCamera(test_support::kMonochromeCamera);
    VmbSimFailCall("VmbCameraOpen", nullptr, -1, VmbErrorOther);
    VmbSimForceFeature(nullptr, "GeVTLIsPresent", "false");
    VmbSimJournalStart();
    VmbShutdown();
    EXPECT_EQ(VmbSimLoadScenario("two-cameras"), VmbErrorSuccess);
    VmbStartup();
    EXPECT_EQ(intOf(open(), "Width"), 656);
    open(test_support::kMonochromeCamera);
    bool present = false;
    VmbFeatureBoolGet(test_support::kSystem, "GeVTLIsPresent", &present);
    EXPECT_TRUE(present);
    EXPECT_EQ(VmbSimJournalText(nullptr, 0), 1u);
}

/// The variable is read at first use, so each case needs a process in which the library was not used yet.
class FirstUse : public ::testing::Test {
  protected:
    FirstUse() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    ~FirstUse() override { test_support::clearEnvironment(VMBSIM_SCENARIO_VARIABLE); }

    static std::ptrdiff_t lineEnds(const std::string& text) {
        return std::count(text.begin(), text.end(), '\n');
    }
    static void exitWith(bool good) { std::_Exit(good ? 0 : 1); }
    static bool hasCameras() {
        VmbHandle_t camera = nullptr;
        return VmbStartup() == VmbErrorSuccess &&
               VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera) == VmbErrorSuccess;
    }
};

using FirstUseDeathTest = FirstUse;

TEST_F(FirstUseDeathTest, TakesTheDefaultWithoutAVariable) {
    test_support::clearEnvironment(VMBSIM_SCENARIO_VARIABLE);
    EXPECT_EXIT(exitWith(hasCameras()), ::testing::ExitedWithCode(0), "^$");
    test_support::setEnvironment(VMBSIM_SCENARIO_VARIABLE, "");
    EXPECT_EXIT(exitWith(hasCameras()), ::testing::ExitedWithCode(0), "^$");
}

TEST_F(FirstUseDeathTest, TakesTheScenarioThatTheVariableNames) {
    test_support::setEnvironment(VMBSIM_SCENARIO_VARIABLE, "zero-cameras");
    EXPECT_EXIT(exitWith(std::string(VmbSimScenarioName()) == "zero-cameras" && !hasCameras()),
                ::testing::ExitedWithCode(0), "^$");
}

TEST_F(FirstUseDeathTest, FailsToStartWithAnUnknownScenarioAndSaysWhyOnce) {
    test_support::setEnvironment(VMBSIM_SCENARIO_VARIABLE, "nowhere");
    EXPECT_EXIT(
        exitWith(VmbStartup() == VmbErrorOther && VmbStartup() == VmbErrorOther),
        ::testing::ExitedWithCode(0),
        AllOf(StartsWith("VIMBAC_SIMULATOR_SCENARIO: there is no scenario \"nowhere\". There are "),
              EndsWith(
                  "sixteen-cameras, two-cameras, zero-cameras, and files, whose names end in \".json\".\n"),
              ResultOf(lineEnds, 1)));
    EXPECT_EXIT(exitWith(std::string(VmbSimScenarioName()).empty() &&
                         VmbSimLoadScenario("two-cameras") == VmbErrorSuccess && hasCameras()),
                ::testing::ExitedWithCode(0), "^$");
}

TEST_F(FirstUseDeathTest, TakesTheFileThatTheVariableNames) {
    const test_support::TemporaryDirectory directory;
    const std::string file = (directory.path() / "mine.json").string();
    test_support::setEnvironment(VMBSIM_SCENARIO_VARIABLE, file);
    std::ofstream(file) << R"({"cameras": [{"model": "Manta_G-033C"}]})";
    EXPECT_EXIT(exitWith(VmbSimScenarioName() == file && hasCameras()), ::testing::ExitedWithCode(0), "^$");
    std::ofstream(file) << R"({"cameras": [{"model": "Manta"}]})";
    EXPECT_EXIT(exitWith(VmbStartup() == VmbErrorOther && VmbSimScenarioError(nullptr, 0) > 100),
                ::testing::ExitedWithCode(0),
                "^VIMBAC_SIMULATOR_SCENARIO: .*mine\\.json: /cameras/0/model: there is no model \"Manta\"");
    std::filesystem::remove(file);
    EXPECT_EXIT(exitWith(VmbStartup() == VmbErrorOther), ::testing::ExitedWithCode(0),
                "^VIMBAC_SIMULATOR_SCENARIO: .*mine\\.json: there is no such file\\.\n$");
}

}  // namespace
