// Worked out from what each function is for, never from a run.
#include "fault_expectations.h"

#include <map>

namespace faults {
namespace {

/// The user's words for a code; deliberately few.
std::string textOf(VmbError_t code) {
    static const std::map<VmbError_t, std::string> texts{
        {-1, "Unexpected fault in VimbaC or driver"},
        {-2, "VmbStartup() was not called before the current command"},
        {-3, "The designated instance (camera, feature etc.) cannot be found"},
        {-6, "Operation is invalid with the current access mode"},
        {-12, "Timeout during wait"},
        {-13, "Other error"},
        {-16, "No transport layers are found"}};
    const auto known = texts.find(code);
    return known != texts.end() ? known->second : "Error code " + std::to_string(code);
}

/// A camera need not have these, and need not tell them now.
bool isOptional(const std::string& feature) {
    static const std::set<std::string> optional{"Hue",
                                                "Saturation",
                                                "Gamma",
                                                "ExposureAuto",
                                                "ExposureAutoMax",
                                                "GainAuto",
                                                "GainAutoAdjustTol",
                                                "GainAutoRate",
                                                "BalanceWhiteAuto",
                                                "BalanceRatioSelector",
                                                "BalanceRatioAbs"};
    return optional.count(feature) != 0;
}

/// Of lengths and lists that are asked for twice: once for the size, once for the content.
bool isSecondQuestion(const Call& call) {
    return call.ofKind % 2 == 0;
}

std::string reasonOf(const Call& call) {
    if (call.function == "VmbFeatureStringGet" && isSecondQuestion(call)) {
        return "Cannot read existing string feature";
    }
    return "The feature '" + call.argument + "' is not supported";
}

Expected silent() {
    return {};
}

Expected logged(const std::string& line, Answer answer = Answer::Yes) {
    Expected expected;
    expected.answer = answer;
    expected.log = {line};
    return expected;
}

Expected refused(const Call& call, const std::string& prefix, const std::string& reason) {
    Expected expected;
    expected.answer = Answer::No;
    if (!prefix.empty()) expected.log.push_back(prefix + reason);
    expected.log.emplace_back("Cannot configure camera '%1': %2");
    expected.message = "Cannot configure camera '" + nameOf(call.object) + "': " + reason;
    return expected;
}

/// Enumeration goes on with the other cameras, preparation tells the host by the exception.
Expected notOpened(Expected expected, Phase phase) {
    expected.answer = phase == Phase::Enumerate ? Answer::Yes : Answer::Thrown;
    if (expected.answer == Answer::Thrown) expected.thrown = expected.message;
    return expected;
}

Expected cannotOpen(const Call& call, VmbError_t code) {
    const std::string reason = "Could not open camera: " + textOf(code);
    Expected expected;
    expected.log = {"Cannot open camera: " + reason, "Cannot open camera '%1': %2"};
    expected.message = "Cannot open camera '" + nameOf(call.object) + "': " + reason;
    return notOpened(expected, call.phase);
}

Expected cannotStart(const Call& call, const std::string& reason) {
    Expected expected;
    expected.answer = Answer::No;
    expected.log = {"Camera " + nameOf(call.object) + " cannot start: " + reason, "Cannot start camera %1"};
    expected.message = "Cannot start camera " + nameOf(call.object);
    return expected;
}

Expected failedRegistration(const Call& call, VmbError_t code) {
    if (call.object == "system") {
        Expected expected =
            logged("Could not start device discovery. Error: Could not register callbacks: " + textOf(code),
                   Answer::No);
        expected.recovery = Recovery::NewPlugin;
        return expected;
    }
    const char* const which = call.argument == "EventAcquisitionStart" ? "start" : "end";
    return cannotStart(call, std::string("Cannot register the ") + which + " event handler: " + textOf(code));
}

Expected failedUnregistration(const Call& call, VmbError_t code) {
    // The camera's are not looked at, and nobody is left to be told when the plug-in goes.
    if (call.object != "system" || call.phase != Phase::Terminate) return silent();
    Expected expected =
        logged("Could not terminate the plugin. Error: Could not unregister callbacks: " + textOf(code));
    expected.recovery = Recovery::NewPlugin;
    return expected;
}

Expected failedEndOfCapture(const Call& call, VmbError_t code) {
    Expected expected = logged("Cannot end capture: " + textOf(code));
    if (call.phase == Phase::Prepare) {
        // The start that follows finds the old capture running.
        const Expected start = cannotStart(call, "VmbCaptureStart failed: " + textOf(VmbErrorInvalidAccess));
        expected.answer = start.answer;
        expected.message = start.message;
        expected.log.insert(expected.log.end(), start.log.begin(), start.log.end());
    }
    if (call.phase == Phase::Stop) expected.recovery = Recovery::PrepareTwice;
    return expected;
}

Expected failedRevocation(const Call& call, VmbError_t code) {
    // Closing a camera revokes once more and does not look at the result.
    const bool endsCapture = call.phase != Phase::Terminate && !isSecondQuestion(call);
    if (!endsCapture) return silent();
    Expected expected = logged("Cannot deallocate buffers: " + textOf(code));
    if (call.phase == Phase::Stop) expected.unrevoked = 5;
    // The memory is given back all the same, on purpose.
    expected.misuses = {"the memory of an announced or queued frame is gone"};
    return expected;
}

Expected failedClose(const Call& call, VmbError_t) {
    Expected expected = logged("Cannot close camera " + nameOf(call.object));
    // The library holds the camera open until it is shut down.
    if (call.phase == Phase::Close) expected.recovery = Recovery::Initialise;
    return expected;
}

Expected failedList(const Call& call, VmbError_t code) {
    // A camera came between the two questions: what fitted is used.
    if (isSecondQuestion(call) && code == VmbErrorMoreData) {
        // The call that fails fills nothing, so that both records are without a name.
        Expected expected;
        expected.log.assign(kCameras.size(),
                            "A camera without an id is left out, model '', serial number ''");
        return expected;
    }
    Expected expected;
    expected.answer = Answer::Thrown;
    expected.thrown = "Could not retrieve the camera list: " + textOf(code);
    return expected;
}

Expected failedVersion(const Call& call, VmbError_t code) {
    // The second time it is only for the log.
    if (call.phase != Phase::Create) return silent();
    Expected expected = logged("Not able to query Vimba version: " + textOf(code));
    expected.recovery = Recovery::NewPlugin;
    return expected;
}

Expected failedStartup(const Call&, VmbError_t code) {
    Expected expected = logged("Not able to initialize Vimba GIGE Camera API: " + textOf(code));
    expected.recovery = Recovery::NewPlugin;
    return expected;
}

Expected failedSystemFeature(const Call& call) {
    if (call.argument == "GeVTLIsPresent") {
        Expected expected;
        expected.answer = Answer::Thrown;
        expected.thrown = reasonOf(call);
        return expected;
    }
    if (call.argument == "GeVDiscoveryAllAuto") {
        Expected expected = logged("Could not start device discovery. Error: " + reasonOf(call), Answer::No);
        expected.recovery = Recovery::NewPlugin;
        return expected;
    }
    if (call.phase == Phase::Destroy) return silent();
    return logged("Could not terminate the plugin. Error: " + reasonOf(call));
}

Expected failedCacheRead(const Call& call) {
    if (isOptional(call.argument)) return silent();
    return logged("Cannot update cache of camera. Error:" + reasonOf(call));
}

Expected failedDomainRead(const Call& call) {
    if (call.argument != "BalanceRatioSelector") return silent();
    return logged("Cannot update domain cache of camera. Error:" + reasonOf(call));
}

Expected failedConfigurationRead(const Call& call) {
    if (isOptional(call.argument)) return silent();
    if (call.argument == "DeviceModelName") {
        return logged("Camera " + nameOf(call.object) + " model name unreadable: " + reasonOf(call));
    }
    return notOpened(refused(call, "Cannot configure the camera. Error: ", reasonOf(call)), call.phase);
}

Expected failedAcquisitionCommand(const Call& call) {
    Expected expected;
    expected.answer = Answer::Thrown;
    if (call.argument == "AcquisitionStop") {
        expected.thrown = reasonOf(call);
        return expected;
    }
    expected.log = {"Cannot start acquisition of camera %1:" + reasonOf(call),
                    "Cannot start acquisition of camera %1"};
    expected.message = expected.thrown = "Cannot start acquisition of camera " + nameOf(call.object);
    return expected;
}

Expected failedWrite(const Call& call) {
    // A setter's refusal names the reason in its message alone.
    return refused(
        call, call.phase == Phase::Settings ? "" : "Cannot configure the camera. Error: ", reasonOf(call));
}

Expected failedAuxChange(const Call& call) {
    Expected expected = refused(call, "Cannot configure the camera. Error: ", reasonOf(call));
    expected.answer = Answer::Yes;  // the service has no answer to give
    return expected;
}

Expected failedFeature(const Call& call, VmbError_t) {
    if (call.object == "system") return failedSystemFeature(call);
    if (call.argument == "AcquisitionStart" || call.argument == "AcquisitionStop") {
        // Nobody hears of a stop that fails where the camera is closed in any case.
        return call.phase == Phase::Start || call.phase == Phase::Stop ? failedAcquisitionCommand(call)
                                                                       : silent();
    }
    switch (call.step) {
        case Step::Cache:
            return failedCacheRead(call);
        case Step::Domain:
            return failedDomainRead(call);
        case Step::Configuration:
            return failedConfigurationRead(call);
        case Step::Write:
            return failedWrite(call);
        case Step::AuxChange:
            return failedAuxChange(call);
        case Step::Capture:
            return cannotStart(call, reasonOf(call));
        case Step::Trigger:
            return refused(call,
                           call.isAux ? "Cannot configure AUX triggered mode. Error: "
                                      : "Cannot configure fixed framerate mode. Error: ",
                           reasonOf(call));
        case Step::None:
            break;
    }
    // An automatic value that cannot be read is left out.
    return silent();
}

Expected expectedOfCall(const Call& call, VmbError_t code) {
    // A frame that cannot be queued is one buffer less.
    if (call.thread == "frame") return silent();
    if (call.thread != "host") {
        return logged("Exception in the " + call.thread + " handler: " + reasonOf(call));
    }
    using Rule = Expected (*)(const Call&, VmbError_t);
    const Rule nothing = [](const Call&, VmbError_t) { return silent(); };
    static const std::map<std::string, Rule> rules{
        {"VmbVersionQuery", failedVersion},
        {"VmbStartup", failedStartup},
        {"VmbCamerasList", failedList},
        {"VmbCameraOpen", cannotOpen},
        {"VmbCameraClose", failedClose},
        {"VmbFeaturesList", [](const Call&, VmbError_t) { return logged("Cannot gather camera features"); }},
        {"VmbFeatureInvalidationRegister", failedRegistration},
        {"VmbFeatureInvalidationUnregister", failedUnregistration},
        {"VmbFrameAnnounce",
         [](const Call& failed, VmbError_t with) {
             return cannotStart(failed, "Could not announce frame buffer: " + textOf(with));
         }},
        {"VmbFrameRevokeAll", failedRevocation},
        {"VmbCaptureStart",
         [](const Call& failed, VmbError_t with) {
             return cannotStart(failed, "VmbCaptureStart failed: " + textOf(with));
         }},
        {"VmbCaptureEnd", failedEndOfCapture},
        {"VmbCaptureQueueFlush",
         [](const Call&, VmbError_t with) {
             return logged("Cannot flush the capture queue: " + textOf(with));
         }},
        {"VmbCaptureFrameQueue", nothing},
        // What a camera has and what it can be set to: no answer counts as "none".
        {"VmbFeatureInfoQuery", nothing},
        {"VmbFeatureEnumRangeQuery", nothing},
        {"VmbFeatureFloatRangeQuery", nothing},
        {"VmbFeatureIntRangeQuery", nothing},
        {"VmbFeatureIntIncrementQuery", nothing},
    };
    const auto rule = rules.find(call.function);
    return rule != rules.end() ? rule->second(call, code) : failedFeature(call, code);
}

std::string restartOf(const std::string& camera) {
    return "Camera " + nameOf(camera) + " already starting, initiate restart...";
}

/// A second preparation says of each camera that it is restarted, between its configuration and its start.
std::vector<std::string> amongRestarts(const Call& call, const Expected& expected) {
    std::vector<std::string> log;
    const bool starts = call.step == Step::Capture;
    for (const std::string camera : kCameras) {
        const bool concerned = camera == call.object;
        if (concerned && !starts) log.insert(log.end(), expected.log.begin(), expected.log.end());
        if (!concerned || starts || expected.answer == Answer::Yes) log.push_back(restartOf(camera));
        if (concerned && starts) log.insert(log.end(), expected.log.begin(), expected.log.end());
    }
    return log;
}

}  // namespace

std::string nameOf(const std::string& camera) {
    return camera == kCameras[0] ? "Manta_G-033C (50-0503300001)" : "Manta_G-032B (50-0503200002)";
}

std::vector<std::string> logOf(Phase phase) {
    std::vector<std::string> log;
    if (phase != Phase::Prepare) return log;
    for (const char* camera : kCameras) log.push_back(restartOf(camera));
    return log;
}

Expected expectedOf(const Call& call, VmbError_t code) {
    Expected expected = expectedOfCall(call, code);
    if (call.phase == Phase::Prepare) expected.log = amongRestarts(call, expected);
    return expected;
}

}  // namespace faults
