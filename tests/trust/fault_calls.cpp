#include "fault_calls.h"

#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <tuple>

namespace faults {
namespace {

/// "[host] VmbFeatureIntGet(DEV_000F31A10001, "Width") = 0, 656"
Call parsed(const std::string& line) {
    Call call;
    const auto bracket = line.find("] ");
    const auto open = line.find('(');
    const auto close = line.find(')', open);
    if (line.empty() || line[0] != '[' || bracket == std::string::npos || close == std::string::npos) {
        throw std::runtime_error("a line of the journal that is not understood: " + line);
    }
    call.thread = line.substr(1, bracket - 1);
    call.function = line.substr(bracket + 2, open - bracket - 2);
    const std::string arguments = line.substr(open + 1, close - open - 1);
    const auto quote = arguments.find('"');
    if (quote != std::string::npos) {
        call.argument = arguments.substr(quote + 1, arguments.find('"', quote + 1) - quote - 1);
    }
    const std::string first = arguments.substr(0, arguments.find(','));
    // Of lists it is a number.
    if (first.rfind("DEV_", 0) == 0 || first == "system") call.object = first;
    if (call.function == "VmbCameraOpen") call.object = call.argument;
    return call;
}

bool isQueryOfRanges(const Call& call) {
    static const std::set<std::string> queries{"VmbFeatureFloatRangeQuery", "VmbFeatureIntRangeQuery",
                                               "VmbFeatureIntIncrementQuery", "VmbFeatureEnumRangeQuery"};
    return queries.count(call.function) != 0 || call.argument == "BalanceRatioSelector" ||
           call.argument == "WidthMax" || call.argument == "HeightMax";
}

bool is(const Call& call, const char* function, const char* argument) {
    return call.function == function && call.argument == argument;
}

/// The step that a call belongs to, from the one before it of the same camera and the one behind it.
Step stepOf(const Call& call, Step before, const Call* next) {
    const bool readsGeometry = is(call, "VmbFeatureIntGet", "OffsetX") && next != nullptr &&
                               is(*next, "VmbFeatureIntGet", "OffsetY");
    if (readsGeometry) return Step::Cache;
    if (is(call, "VmbFeatureCommandRun", "GevTimestampControlReset") ||
        is(call, "VmbFeatureCommandRun", "AcquisitionAbort")) {
        return Step::Capture;
    }
    if (is(call, "VmbFeatureIntGet", "GevTimestampTickFrequency")) return Step::Configuration;
    if (is(call, "VmbFeatureEnumSet", "TriggerSelector")) return Step::Trigger;
    if (is(call, "VmbFeatureFloatRangeQuery", "Gain")) return Step::Domain;
    if (before == Step::Domain && !isQueryOfRanges(call)) return Step::Write;
    const bool opens = call.phase == Phase::Enumerate || call.phase == Phase::Open;
    if (before == Step::Configuration && opens && is(call, "VmbFeatureEnumGet", "PixelFormat")) {
        return Step::Write;
    }
    if (before == Step::AuxChange && is(call, "VmbFeatureEnumSet", "PixelFormat")) return Step::Write;
    return before;
}

Step firstStepOf(Phase phase) {
    if (phase == Phase::Settings) return Step::AuxChange;
    return phase == Phase::Configure || phase == Phase::Prepare ? Step::Write : Step::None;
}

/// A trigger program ends with its own last call.
bool endsTrigger(const Call& call) {
    return is(call, "VmbFeatureFloatGet", "AcquisitionFrameRateAbs") ||
           (is(call, "VmbFeatureEnumSet", "TriggerMode") && call.isAux);
}

void findSteps(std::vector<Call>& calls) {
    std::map<std::string, std::vector<std::size_t>> byCamera;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].thread == "host") byCamera[calls[i].object].push_back(i);
    }
    for (const auto& [camera, indices] : byCamera) {
        if (camera.rfind("DEV_", 0) != 0) continue;
        Step step = firstStepOf(calls[indices.front()].phase);
        bool isAux = false;
        for (std::size_t i = 0; i < indices.size(); ++i) {
            Call& call = calls[indices[i]];
            const Call* const next = i + 1 < indices.size() ? &calls[indices[i + 1]] : nullptr;
            step = stepOf(call, step, next);
            if (is(call, "VmbFeatureEnumSet", "TriggerSelector")) {
                isAux = next != nullptr && next->argument == "TriggerSource";
            }
            call.step = step;
            call.isAux = isAux;
            if (step == Step::Trigger && endsTrigger(call)) step = Step::Write;
        }
    }
}

}  // namespace

std::string describe(const Call& call) {
    std::ostringstream text;
    text << nameOf(call.phase) << ": call " << call.nth << " of " << call.function << " (" << call.object
         << " " << call.argument << ", " << call.thread << ")";
    return text.str();
}

std::vector<Call> callsOf(Phase phase, const std::vector<std::string>& journal) {
    std::vector<Call> calls;
    std::map<std::string, int> nth;
    std::map<std::tuple<std::string, std::string, std::string, std::string>, int> ofKind;
    for (const std::string& line : journal) {
        Call call = parsed(line);
        call.phase = phase;
        call.nth = ++nth[call.function];
        call.ofKind = ++ofKind[{call.thread, call.function, call.object, call.argument}];
        calls.push_back(call);
    }
    findSteps(calls);
    return calls;
}

std::vector<std::string> journalLines() {
    std::string text(VmbSimJournalText(nullptr, 0), '\0');
    VmbSimJournalText(text.data(), text.size());
    std::vector<std::string> lines;
    std::istringstream stream(text.c_str());
    for (std::string line; std::getline(stream, line);) {
        if (line.find("): misuse: ") == std::string::npos) lines.push_back(line);
    }
    return lines;
}

}  // namespace faults
