// Every call of the camera library fails once, at every step of a recording from open to close.
#include "settings_fixture.h"
#include "vendor_fault.h"

namespace {

using test_support::Fault;
using test_support::faultsOfJournal;
using test_support::kColourCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::mayFailSilently;
using test_support::Settings;
using test_support::Simulator;

class AnyCallThatFails : public Settings {
  protected:
    AnyCallThatFails() { VmbSimSetWatchdog(kPatienceMs); }
    ~AnyCallThatFails() override { VmbSimSetWatchdog(0); }

    /// One step of the host's; false also when it threw.
    template <class Step>
    static bool attempt(Step step) {
        try {
            return step();
        } catch (const exception_manager::Exception&) {
            return false;
        } catch (const zelt_gige_api::CameraApiError&) {
            return false;
        }
    }
    /// A recording with a setting changed before it and one during it. True when every step went well.
    bool record() {
        bool well = true;
        const auto step = [&well](auto what) { well = attempt(what) && well; };
        step([&] { return setNumber("CAMERA/Gain", 3); });
        step([&] { return plugin->prepareAcquisition(); });
        plugin->onAcquisitionPrepared();
        step([&] { return plugin->startAcquisition(); });
        step([&] { return setNumber("CAMERA/Exposure", 5000); });
        step([&] { return plugin->stopAcquisition(); });
        plugin->onAcquisitionFinished();
        return well;
    }
    bool openAndRecord() {
        const bool opened = attempt([&] {
            plugin->enumerateDevices();
            return true;
        });
        return opened && record();
    }
    void restart() {
        VmbSimClearFaults();
        plugin->terminate();
        // Like a camera just switched on.
        VmbSimUnplugCamera(kColourCamera);
        VmbSimPlugCamera(kColourCamera);
        ASSERT_TRUE(plugin->initialize());
    }
};

TEST_F(AnyCallThatFails, IsToldAndTheNextRecordingGoesWell) {
    plugin->initialize();
    VmbSimJournalStart();
    ASSERT_TRUE(openAndRecord());
    const std::vector<Fault> faults = faultsOfJournal();
    VmbSimJournalStop();
    ASSERT_GT(faults.size(), 150u);
    for (const Fault& fault : faults) {
        SCOPED_TRACE(::testing::PrintToString(fault));
        // Its frames' memory is given back although they are announced, which nobody can mend.
        if (fault.function == "VmbFrameRevokeAll") continue;
        restart();
        fault.arm(VmbErrorOther);
        const LogCapture log(UniLogSeverityLevel::Warning);
        const bool went = openAndRecord();
        EXPECT_TRUE(!went || !log.lines().empty() || mayFailSilently(fault));
        VmbSimClearFaults();
        // A capture that could not be ended is in the way of the next one, whose failure makes the one after
        // it begin with an end.
        if (fault.function == "VmbCaptureEnd") {
            EXPECT_FALSE(openAndRecord());
        }
        EXPECT_TRUE(openAndRecord()) << lastMessage(0);
        EXPECT_EQ(text(0, "CAMERA/Gain"), "3");
        plugin->terminate();
        EXPECT_EQ(Simulator::misuses(), "");
        // Nothing holds the camera any more.
        EXPECT_EQ(VmbSimTakeControl(kColourCamera, true), VmbErrorSuccess);
        VmbSimTakeControl(kColourCamera, false);
        if (HasFailure()) return;
    }
}

}  // namespace
