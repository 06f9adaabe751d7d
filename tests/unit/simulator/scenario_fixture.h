/// Scenarios that a test writes itself, in virtual time.
#pragma once

#include "temporary_directory.h"
#include "virtual_fixture.h"

namespace test_support {

/// What was wrong with the scenario that was named last.
inline std::string scenarioError() {
    std::string text(VmbSimScenarioError(nullptr, 0), '\0');
    VmbSimScenarioError(text.data(), text.size());
    text.pop_back();
    return text;
}

/// Not started; it is zero o'clock.
class ScenarioTest : public ::testing::Test {
  protected:
    ScenarioTest() { EXPECT_EQ(VmbSimUseVirtualTime(true), VmbErrorSuccess); }
    ~ScenarioTest() override {
        VmbShutdown();
        EXPECT_EQ(VmbSimLoadScenario("two-cameras"), VmbErrorSuccess);
        EXPECT_EQ(VmbSimUseVirtualTime(false), VmbErrorSuccess);
    }

    std::string path(const std::string& name = "scenario.json") const {
        return (m_directory.path() / name).string();
    }
    std::string write(const std::string& text) const {
        std::ofstream(path(), std::ios::binary) << text;
        return path();
    }
    VmbError_t load(const std::string& text) const { return VmbSimLoadScenario(write(text).c_str()); }
    /// Two cameras, with what the text adds to the file.
    void start(const std::string& more) const {
        const std::string cameras = R"("cameras": [{"model": "Manta_G-033C"}, {"model": "Manta_G-032B"}])";
        startWith(R"({)" + cameras + ", " + more + "}");
    }
    void startWith(const std::string& text) const {
        ASSERT_EQ(load(text), VmbErrorSuccess) << scenarioError();
        ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    }
    static void startReady(const char* name) {
        ASSERT_EQ(VmbSimLoadScenario(name), VmbErrorSuccess) << scenarioError();
        ASSERT_EQ(VmbStartup(), VmbErrorSuccess);
    }

    static void advance(std::uint64_t ns) { ASSERT_EQ(VmbSimAdvance(ns), VmbErrorSuccess); }
    static void advanceTo(std::uint64_t ns) { advance(ns - VmbSimTime()); }
    static bool isThere(const char* id = kColourCamera) {
        VmbCameraInfo_t info{};
        return VmbCameraInfoQuery(id, &info, sizeof info) == VmbErrorSuccess;
    }
    static VmbHandle_t open(const std::string& id = kColourCamera) {
        VmbHandle_t camera = nullptr;
        EXPECT_EQ(VmbCameraOpen(id.c_str(), VmbAccessModeFull, &camera), VmbErrorSuccess) << id;
        return camera;
    }
    /// Small pictures at 100 Hz.
    static VmbHandle_t openFast(const std::string& id = kColourCamera) {
        const VmbHandle_t camera = open(id);
        setEnum(camera, "PixelFormat", "Mono8");
        setEnum(camera, "TriggerMode", "Off");
        setInt(camera, "Width", 64);
        setInt(camera, "Height", 16);
        setFloat(camera, "ExposureTimeAbs", 1000);
        setFloat(camera, "AcquisitionFrameRateAbs", 100);
        return camera;
    }
    /// The same, with an exposure for each pulse.
    static VmbHandle_t openTriggered(const std::string& id = kColourCamera) {
        const VmbHandle_t camera = openFast(id);
        setEnum(camera, "TriggerMode", "On");
        setEnum(camera, "TriggerSource", "Line1");
        return camera;
    }
    static std::unique_ptr<Stream> acquire(VmbHandle_t camera) {
        auto stream = std::make_unique<Stream>(camera);
        stream->startCapture();
        run(camera, "AcquisitionStart");
        return stream;
    }

    TemporaryDirectory m_directory;
};

}  // namespace test_support
