#include <bit>

#include <gmock/gmock.h>

#include "fake_plugin.h"
#include "host_failure.h"
#include "plugin_library.h"
#include "temporary_directory.h"
#include "vendor_probe.h"

using host::ExitCode;
using host::HostFailure;
using testing::HasSubstr;

namespace {

host_test::FakeCreator* s_creator = nullptr;

extern "C" {
const char* fakeDllName() {
    return "GIGECAMERA";
}
plugin_api::IfPluginCreator* fakeFactory() {
    return s_creator;
}
VmbError_t fakeVersion(VmbVersionInfo_t* info, VmbUint32_t) {
    *info = {1, 9, 1};
    return VmbErrorSuccess;
}
const char* fakeScenario() {
    return "two-cameras";
}
VmbError_t fakeReadStamp(const void*, VmbUint64_t size, VmbSimFrameStamp* stamp) {
    stamp->frameId = size;
    return VmbErrorIncomplete;
}
}

template <class Function>
void* address(Function* function) {
    return std::bit_cast<void*>(function);
}

class PluginLibraryTest : public testing::Test {
  protected:
    PluginLibraryTest() {
        s_creator = &m_creator;
        m_symbols = {{"ZELT_getPluginDllName", address(&fakeDllName)},
                     {"ZELT_getPluginFactory", address(&fakeFactory)}};
    }
    ~PluginLibraryTest() override { s_creator = nullptr; }

    std::string refusal() {
        auto library = std::make_shared<host_test::FakeLibrary>(m_calls);
        library->m_symbols = m_symbols;
        try {
            host::findCreator(library, "some.so");
        } catch (const HostFailure& failure) {
            EXPECT_EQ(failure.code(), ExitCode::NotAPlugin);
            return failure.what();
        }
        return "accepted";
    }

    host_test::FakeCreator m_creator;
    std::map<std::string, void*> m_symbols;
    host_test::Calls m_calls;
};

TEST_F(PluginLibraryTest, FindsTheCreatorByTheTwoFunctions) {
    auto library = std::make_shared<host_test::FakeLibrary>(m_calls);
    library->m_symbols = m_symbols;
    const host::PluginSource source = host::findCreator(library, "some.so");
    EXPECT_EQ(source.creator, &m_creator);
    EXPECT_EQ(source.name, "GIGECAMERA");
}

TEST_F(PluginLibraryTest, RefusesALibraryWithoutOneOfTheFunctions) {
    m_symbols.erase("ZELT_getPluginFactory");
    EXPECT_EQ(refusal(),
              "some.so is no camera plug-in: it does not export ZELT_getPluginFactory; name the right "
              "file with --plugin.");
    m_symbols.erase("ZELT_getPluginDllName");
    EXPECT_THAT(refusal(), HasSubstr("does not export ZELT_getPluginDllName"));
}

TEST_F(PluginLibraryTest, RefusesALibraryWithoutCreator) {
    s_creator = nullptr;
    EXPECT_THAT(refusal(), HasSubstr("it has no creator of plug-ins"));
}

TEST_F(PluginLibraryTest, RefusesAnotherVersionOfTheInterface) {
    m_creator.m_version = 2;
    EXPECT_THAT(refusal(), HasSubstr("its interface has version 2 instead of 1"));
}

TEST_F(PluginLibraryTest, ReportsAMissingFile) {
    try {
        host::loadPlugin("/none/plugin.so");
        FAIL();
    } catch (const HostFailure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::PluginMissing);
        EXPECT_STREQ(failure.what(),
                     "There is no plug-in library /none/plugin.so; name the right file with --plugin.");
    }
}

TEST_F(PluginLibraryTest, ReportsAFileThatIsNoLibrary) {
    const test_support::TemporaryDirectory directory;
    const std::string file = (directory.path() / "text.dll").string();
    std::ofstream(file) << "no library";
    try {
        host::loadPlugin(file);
        FAIL();
    } catch (const HostFailure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::PluginMissing);
        EXPECT_THAT(failure.what(), HasSubstr(file + " cannot be loaded"));
    }
}

TEST(VendorProbe, KnowsTheSimulator) {
    host_test::Calls calls;
    auto library = std::make_shared<host_test::FakeLibrary>(calls);
    library->m_symbols = {{"VmbVersionQuery", address(&fakeVersion)},
                          {"VmbSimScenarioName", address(&fakeScenario)},
                          {"VmbSimReadStamp", address(&fakeReadStamp)}};
    const host::VendorProbe probe(library);
    EXPECT_EQ(probe.describe(), "vendor library 1.9.1 (simulator: two-cameras)");
    ASSERT_NE(probe.stampReader(), nullptr);
    VmbSimFrameStamp stamp{};
    EXPECT_EQ(probe.stampReader()->read(nullptr, 77, stamp), VmbErrorIncomplete);
    EXPECT_EQ(stamp.frameId, 77u);
}

VmbSimRhythm s_driven{};
int s_silenced = 0;

VmbError_t fakeDrive(const char* camera, const VmbSimRhythm* rhythm) {
    s_driven = *rhythm;
    return camera == nullptr ? VmbErrorSuccess : VmbErrorNotFound;
}

VmbError_t fakeSilence(const char* camera) {
    if (camera == nullptr) ++s_silenced;
    return VmbErrorSuccess;
}

TEST(VendorProbe, ReachesTheTriggerLineOfAllSimulatedCameras) {
    host_test::Calls calls;
    auto library = std::make_shared<host_test::FakeLibrary>(calls);
    library->m_symbols = {{"VmbSimDriveLine", address(&fakeDrive)}};
    EXPECT_EQ(host::VendorProbe(library).triggerLine(), nullptr) << "half of it is none";
    library->m_symbols["VmbSimSilenceLine"] = address(&fakeSilence);
    const host::VendorProbe probe(library);
    ASSERT_NE(probe.triggerLine(), nullptr);
    VmbSimRhythm rhythm{};
    rhythm.numerator = 77;
    EXPECT_EQ(probe.triggerLine()->drive(rhythm), VmbErrorSuccess);
    EXPECT_EQ(s_driven.numerator, 77u);
    probe.triggerLine()->silence();
    EXPECT_EQ(s_silenced, 1);
}

VmbError_t fakeUnderruns(const char* camera, VmbUint64_t* frames) {
    *frames = 4;
    return std::string(camera) == "DEV_1" ? VmbErrorSuccess : VmbErrorDeviceNotOpen;
}

TEST(VendorProbe, CountsWhatFoundNoBufferOfOpenCameras) {
    host_test::Calls calls;
    auto library = std::make_shared<host_test::FakeLibrary>(calls);
    library->m_symbols = {{"VmbSimCountUnderruns", address(&fakeUnderruns)}};
    const host::VendorProbe probe(library);
    ASSERT_NE(probe.underrunReader(), nullptr);
    EXPECT_EQ(probe.underrunReader()->underruns("DEV_1"), 4u);
    EXPECT_EQ(probe.underrunReader()->underruns("DEV_2"), std::nullopt);
}

TEST(VendorProbe, KnowsTheVendorsOwnLibrary) {
    host_test::Calls calls;
    auto library = std::make_shared<host_test::FakeLibrary>(calls);
    library->m_symbols = {{"VmbVersionQuery", address(&fakeVersion)}};
    const host::VendorProbe probe(library);
    EXPECT_EQ(probe.describe(), "vendor library 1.9.1");
    EXPECT_EQ(probe.scenario(), "");
    EXPECT_EQ(probe.stampReader(), nullptr);
    EXPECT_EQ(probe.triggerLine(), nullptr);
    EXPECT_EQ(probe.underrunReader(), nullptr);
}

TEST(VendorProbe, SurvivesThatThereIsNone) {
    const host::VendorProbe probe(nullptr);
    EXPECT_EQ(probe.describe(), "vendor library of unknown version");
    EXPECT_EQ(probe.stampReader(), nullptr);
    EXPECT_EQ(probe.triggerLine(), nullptr);
    EXPECT_EQ(probe.underrunReader(), nullptr);
}

}  // namespace
