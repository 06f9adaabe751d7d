// Every vendor call of every step in a plug-in's life fails once: what the host hears, and that nothing is
// left.
#include <functional>

#include "full_run.h"
#include "plugin_fixture.h"
#include "vendor_fault.h"
#include "zelt_gige_camera_api.h"

namespace {

using test_support::Fault;
using test_support::faultsOfJournal;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::LogCapture;
using test_support::mayFailSilently;
using test_support::PluginTest;
using test_support::pluginTypeId;
using test_support::Simulator;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

enum class Answer { Yes, No, Thrown };

enum class Step { Create, Initialize, Enumerate, Prepare, Start, Process, Stop, Terminate, Destroy };

constexpr Step kSteps[] = {Step::Create,  Step::Initialize, Step::Enumerate, Step::Prepare, Step::Start,
                           Step::Process, Step::Stop,       Step::Terminate, Step::Destroy};

const char* nameOf(Step step) {
    constexpr const char* kNames[] = {"Create",  "Initialize", "Enumerate", "Prepare", "Start",
                                      "Process", "Stop",       "Terminate", "Destroy"};
    return kNames[static_cast<int>(step)];
}

constexpr VmbError_t kCodes[] = {VmbErrorInternalFault, VmbErrorNotFound, VmbErrorInvalidAccess,
                                 VmbErrorTimeout, VmbErrorOther};

/// Where tests are slow, one fault in so many of a long step: the fault matrix runs there as well.
constexpr std::size_t kSlowStride = 3;

class AnyStep : public PluginTest, public ::testing::WithParamInterface<Step> {
  protected:
    AnyStep() : PluginTest("two-cameras", true) {
        VmbSimSetWatchdog(kPatienceMs);
        destroy();
    }
    ~AnyStep() override {
        destroy();
        VmbSimSetWatchdog(0);
    }

    static Answer asAnswer(bool answer) { return answer ? Answer::Yes : Answer::No; }

    Answer callFor(Step step) {
        switch (step) {
            case Step::Create:
                return asAnswer(creator.createPlugin("GIGECAMERA", pluginTypeId(), &plugin));
            case Step::Initialize:
                plugin->setSharedAcquisitionObject(clock);
                return asAnswer(plugin->initialize());
            case Step::Enumerate:
                plugin->enumerateDevices();
                return Answer::Yes;
            case Step::Prepare:
                return asAnswer(plugin->prepareAcquisition());
            case Step::Start:
                plugin->onAcquisitionPrepared();
                return asAnswer(plugin->startAcquisition());
            case Step::Process:
                return asAnswer(plugin->processAcquisition());
            case Step::Stop:
                return asAnswer(plugin->stopAcquisition());
            case Step::Terminate:
                plugin->terminate();
                return Answer::Yes;
            case Step::Destroy:
                destroy();
                return Answer::Yes;
        }
        return Answer::No;
    }
    Answer run(Step step) {
        try {
            return callFor(step);
        } catch (const exception_manager::Exception&) {
            return Answer::Thrown;
        } catch (const zelt_gige_api::CameraApiError&) {
            return Answer::Thrown;
        }
    }
    /// A host's whole day up to a step, on a computer that was just switched on.
    void bringTo(Step end) {
        destroy();
        ASSERT_EQ(Simulator::misuses(), "");
        ASSERT_EQ(VmbSimLoadScenario("two-cameras"), VmbErrorSuccess) << "the library is still started";
        for (const Step step : kSteps) {
            if (step == end) return;
            // A plug-in that is just destroyed has been terminated by nobody.
            if (step == Step::Terminate || (end == Step::Destroy && step == Step::Stop)) continue;
            ASSERT_EQ(run(step), Answer::Yes) << nameOf(step);
            if (step == Step::Prepare) {
                ASSERT_TRUE(plugin->getChannelConfig(0)->setItem(
                    config_keys::kCameraGainAuto,
                    config_items::SingleValueConfigItem<std::string>("GIGE/AutoSettingContinuous")));
            }
            if (step == Step::Start) letFramesCome();
        }
    }
    static void letFramesCome() {
        for (const char* camera : {kColourCamera, kMonochromeCamera}) {
            ASSERT_EQ(VmbSimWaitForFrames(camera, 2, kPatienceMs), VmbErrorSuccess) << camera;
        }
    }
    std::vector<Fault> faultsOf(Step step) {
        bringTo(step);
        VmbSimJournalStart();
        EXPECT_EQ(run(step), Answer::Yes);
        std::vector<Fault> faults = faultsOfJournal();
        VmbSimJournalStop();
        // Memory of frames that stay announced is given back all the same, which nobody can mend; and
        // VmbShutdown has no result.
        std::erase_if(faults, [](const Fault& fault) {
            return fault.function == "VmbFrameRevokeAll" || fault.function == "VmbShutdown";
        });
        return faults;
    }
    /// What the host is answered, by the step and the call that failed.
    void expectAnswer(Step step, const Fault& fault, Answer answer, const LogCapture& log);
    static std::ptrdiff_t callsThatBegin(const std::string& text) {
        return std::ranges::count_if(test_support::hostCalls(),
                                     [&](const std::string& call) { return call.rfind(text, 0) == 0; });
    }
    void expectStartUndone() {
        EXPECT_FALSE(plugin->isAcquiring());
        const std::vector<std::string> calls = test_support::hostCalls();
        for (const char* camera : {kColourCamera, kMonochromeCamera}) {
            EXPECT_THAT(calls, ::testing::Contains("VmbCaptureEnd(" + std::string(camera) + ")"));
        }
    }
    /// Nothing is left of the plug-in, and another one records with both cameras.
    void expectNothingLeft() {
        VmbSimClearFaults();
        destroy();
        EXPECT_EQ(Simulator::misuses(), "");
        for (const char* camera : {kColourCamera, kMonochromeCamera}) {
            EXPECT_EQ(VmbSimTakeControl(camera, true), VmbErrorSuccess) << camera;
            VmbSimTakeControl(camera, false);
        }
        EXPECT_EQ(VmbCameraClose(nullptr), VmbErrorApiNotStarted);
        VmbSimClearMisuse();
        for (const Step step : kSteps) {
            EXPECT_EQ(run(step), Answer::Yes) << nameOf(step);
            if (step == Step::Start) letFramesCome();
        }
    }
};

void AnyStep::expectAnswer(Step step, const Fault& fault, Answer answer, const LogCapture& log) {
    const auto errors = log.texts(UniLogSeverityLevel::Error);
    const bool isTold = !log.lines().empty();
    switch (step) {
        case Step::Create:
            EXPECT_EQ(answer, Answer::Yes);
            ASSERT_NE(plugin, nullptr);
            EXPECT_FALSE(plugin->initialize());
            break;
        case Step::Initialize:
            EXPECT_EQ(answer, fault.function == "VmbFeatureBoolGet" ? Answer::Thrown : Answer::No);
            EXPECT_FALSE(plugin->startAcquisition()) << "is not initialized";
            if (answer == Answer::No) {
                EXPECT_FALSE(errors.empty());
            }
            break;
        case Step::Enumerate:
            EXPECT_EQ(answer, fault.function == "VmbCamerasList" ? Answer::Thrown : Answer::Yes);
            EXPECT_EQ(plugin->getChannelIds().size(), answer == Answer::Yes ? 2u : 0u);
            EXPECT_TRUE(isTold || answer == Answer::Thrown || mayFailSilently(fault));
            break;
        case Step::Prepare:
            EXPECT_TRUE(isTold || answer != Answer::Yes || mayFailSilently(fault));
            // Whichever it is that fails, the other camera records.
            EXPECT_GE(callsThatBegin("VmbCaptureStart("), 1);
            break;
        case Step::Start:
            EXPECT_EQ(answer, Answer::Thrown);
            expectStartUndone();
            break;
        case Step::Process:
            EXPECT_EQ(answer, Answer::Yes) << "a value that cannot be read is left out";
            EXPECT_TRUE(plugin->isAcquiring());
            break;
        case Step::Stop:
            EXPECT_TRUE(isTold || answer == Answer::Thrown || mayFailSilently(fault));
            expectStartUndone();
            EXPECT_EQ(callsThatBegin("VmbFeatureCommandRun("), 2) << "both cameras are told to stop";
            break;
        case Step::Terminate:
            EXPECT_EQ(answer, Answer::Yes);
            EXPECT_FALSE(plugin->checkChannelSettings({}, true)) << "is not initialized";
            EXPECT_TRUE(isTold || fault.function == "VmbCameraClose");
            break;
        case Step::Destroy:
            EXPECT_EQ(answer, Answer::Yes);
            break;
    }
}

TEST_P(AnyStep, WhoseVendorCallFailsTellsTheHostAndLeavesNothing) {
    const Step step = GetParam();
    const std::vector<Fault> faults = faultsOf(step);
    ASSERT_FALSE(faults.empty());
    // The long steps take one kind of failure; every function of theirs meets all of them elsewhere.
    const bool isLong = faults.size() >= 40;
    const bool isWhole = test_support::kRunsFast || test_support::isFullRun();
    const std::size_t codes = isLong || !isWhole ? 1 : std::size(kCodes);
    const std::size_t stride = isLong && !isWhole ? kSlowStride : 1;
    for (std::size_t which = 0; which < faults.size(); which += stride) {
        const Fault& fault = faults[which];
        for (const VmbError_t code : std::vector<VmbError_t>(kCodes, kCodes + codes)) {
            SCOPED_TRACE(::testing::PrintToString(fault) + " fails with " + std::to_string(code));
            bringTo(step);
            if (HasFatalFailure()) return;
            const LogCapture log(UniLogSeverityLevel::Warning);
            VmbSimJournalStart();
            fault.arm(code);
            const Answer answer = run(step);
            expectAnswer(step, fault, answer, log);
            VmbSimJournalStop();
            expectNothingLeft();
            if (HasFailure()) return;
        }
    }
    RecordProperty("faults", static_cast<int>((faults.size() + stride - 1) / stride * codes));
}

INSTANTIATE_TEST_SUITE_P(OfAPluginsLife, AnyStep, ::testing::ValuesIn(kSteps),
                         [](const auto& step) { return std::string(nameOf(step.param)); });

}  // namespace
