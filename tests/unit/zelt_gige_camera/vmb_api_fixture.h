/// A camera API on the simulator, with recording callbacks.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "counting_pages.h"
#include "log_capture.h"
#include "simulator.h"
#include "zelt_gige_vmb_api.h"

namespace test_support {

class RecordingDiscovery : public zelt_gige_api::IfDiscoveryCallback {
  public:
    void onCameraAdded(const std::string& id) override { record("added " + id); }
    void onCameraRemoved(const std::string& id) override { record("removed " + id); }
    std::vector<std::string> calls() const {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }
    void clear() {
        const std::lock_guard lock(m_mutex);
        m_calls.clear();
    }
    std::function<void()> beforeReturn = [] {};

  private:
    void record(const std::string& call) {
        {
            const std::lock_guard lock(m_mutex);
            m_calls.push_back(call);
        }
        beforeReturn();
    }
    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
};

struct CameraCall {
    std::string what;
    std::uint64_t timestamp = 0;
    std::uint64_t frameid = 0;
};

class RecordingCamera : public zelt_gige_api::IfCameraCallback {
  public:
    void onAcquisitionStarted(zelt_gige_api::CameraHandle, std::uint64_t timestamp,
                              std::uint64_t frameid) override {
        record({"started", timestamp, frameid});
    }
    void onAcquisitionEnded(zelt_gige_api::CameraHandle, std::uint64_t timestamp,
                            std::uint64_t frameid) override {
        record({"ended", timestamp, frameid});
    }
    void onFrameReceived(zelt_gige_api::CameraHandle, const zelt_gige_api::CameraFrame& frame) override {
        {
            const std::lock_guard lock(m_mutex);
            lastFrame = frame;
        }
        record({"frame", frame.timestamp, frame.frameid});
    }
    std::vector<CameraCall> calls(const std::string& what) const {
        const std::lock_guard lock(m_mutex);
        std::vector<CameraCall> found;
        for (const CameraCall& call : m_calls) {
            if (call.what == what) found.push_back(call);
        }
        return found;
    }
    zelt_gige_api::CameraFrame lastFrame;
    std::function<void(const CameraCall&)> beforeReturn = [](const CameraCall&) {};

  private:
    void record(const CameraCall& call) {
        {
            const std::lock_guard lock(m_mutex);
            m_calls.push_back(call);
        }
        beforeReturn(call);
    }
    mutable std::mutex m_mutex;
    std::vector<CameraCall> m_calls;
};

/// The library is started; no discovery, no camera open.
class VmbApiTest : public ::testing::Test {
  protected:
    VmbApiTest() { EXPECT_TRUE(api.startup()); }

    void find() {
        api.setIntFeature(zelt_gige_api::kSystemHandle, "GeVDiscoveryAllDuration", 1);
        api.runCommand(zelt_gige_api::kSystemHandle, "GeVDiscoveryAllOnce");
    }
    /// Lets the cameras be found and opens one.
    zelt_gige_api::CameraHandle open(const char* id = kColourCamera) {
        find();
        return api.openCamera(id);
    }
    static std::string messageOf(const std::function<void()>& action, std::int32_t* code = nullptr) {
        try {
            action();
        } catch (const zelt_gige_api::CameraApiError& error) {
            if (code != nullptr) *code = error.errorCode;
            return error.what();
        }
        return "nothing was thrown";
    }

    Simulator simulator;
    ExpectedMisuses misuses;
    CountingPages pages;
    zelt_gige_api::VimbaCameraApi api{pages};
};

}  // namespace test_support
