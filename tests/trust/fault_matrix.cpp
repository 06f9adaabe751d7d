#include "fault_matrix.h"

#include <set>
#include <sstream>
#include <stdexcept>

#include "log_capture.h"
#include "sanitized.h"

namespace faults {
namespace {

using test_support::AssertionCapture;
using test_support::LogCapture;

/// The vendor's codes are -1 to -20, of which VmbErrorIO is the newest.
constexpr VmbError_t kLastCode = -20;

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += "\n      " + line;
    return text.empty() ? " nothing" : text;
}

std::string nameOf(Answer answer) {
    constexpr const char* kNames[] = {"yes", "no", "an exception"};
    return kNames[static_cast<int>(answer)];
}

std::vector<std::string> textsOf(const LogCapture& log) {
    std::vector<std::string> texts;
    for (const test_support::LogLine& line : log.lines()) texts.push_back(line.text);
    return texts;
}

/// First, middle and last call of each function.
std::vector<Call> chosenOf(const std::vector<Call>& calls) {
    std::map<std::string, std::vector<Call>> byFunction;
    for (const Call& call : calls) byFunction[call.function].push_back(call);
    // It has no result that could be an error.
    byFunction.erase("VmbShutdown");
    std::vector<Call> chosen;
    for (const auto& [function, all] : byFunction) {
        for (const std::size_t i : std::set<std::size_t>{0, all.size() / 2, all.size() - 1}) {
            chosen.push_back(all[i]);
        }
    }
    return chosen;
}

/// The fault took the place of the call that it was meant for.
bool hasStruck(const Fault& fault) {
    int nth = 0;
    for (const std::string& line : journalLines()) {
        if (line.find("] " + fault.call.function + "(") == std::string::npos) continue;
        if (++nth < fault.call.nth) continue;
        const bool sameArgument = line.find('"' + fault.call.argument + '"') != std::string::npos;
        return (fault.call.argument.empty() || sameArgument) &&
               line.find(fault.call.object) != std::string::npos &&
               line.find(") = " + std::to_string(fault.code)) != std::string::npos;
    }
    return false;
}

class Examination {
  public:
    Examination(World& world, const Fault& fault)
        : m_world(world), m_fault(fault), m_expected(expectedOf(fault.call, fault.code)) {}

    Complaints run(const Baseline& baseline) {
        m_world.bringTo(m_fault.call.phase);
        letItFail();
        VmbSimClearFaults();
        makeEveryCall(m_world);
        append(recordAgain(m_world, m_expected.recovery, m_expected.unrevoked));
        compareSettings(baseline);
        append(examineEnd(m_world, m_expected.misuses));
        return std::move(m_complaints);
    }

  private:
    void append(const Complaints& more) { m_complaints.insert(m_complaints.end(), more.begin(), more.end()); }
    void compare(const char* what, const std::string& found, const std::string& wanted) {
        if (found != wanted) {
            m_complaints.push_back(std::string(what) + " was: " + found + "\n    expected: " + wanted);
        }
    }

    void letItFail() {
        const Phase phase = m_fault.call.phase;
        std::map<std::string, std::string> messages;
        for (const char* camera : kCameras) messages[camera] = m_world.messageOf(camera);
        if (!m_expected.message.empty()) messages[m_fault.call.object] = m_expected.message;
        const AssertionCapture assertions;
        const LogCapture log(UniLogSeverityLevel::Warning);
        VmbSimJournalStart();
        VmbSimFailCall(m_fault.call.function.c_str(), nullptr, m_fault.call.nth, m_fault.code);
        const Outcome outcome = m_world.run(phase);
        VmbSimJournalStop();
        if (!hasStruck(m_fault)) m_complaints.emplace_back("it did not strike");
        compare("the answer", nameOf(outcome.answer), nameOf(m_expected.answer));
        compare("the exception", outcome.thrown, m_expected.thrown);
        compare("the log", joined(textsOf(log)), joined(m_expected.log));
        compare("what was asserted", joined(assertions.expressions()), joined({}));
        if (!m_world.exists() || phase == Phase::Close || phase == Phase::Terminate) return;
        for (const char* camera : kCameras)
            compare("the message", m_world.messageOf(camera), messages[camera]);
        const bool acquires =
            phase == Phase::Stream || (phase == Phase::Start && outcome.answer == Answer::Yes);
        compare("acquiring", std::to_string(m_world.plugin().isAcquiring()), std::to_string(acquires));
    }
    void compareSettings(const Baseline& baseline) {
        if (!m_world.exists()) return;
        for (const auto& [camera, wanted] : baseline.settings) {
            std::map<std::string, std::string> found = m_world.settingsOf(camera.c_str());
            for (const auto& [key, value] : wanted) {
                compare(("setting " + key + " of " + camera).c_str(),
                        found.count(key) != 0 ? found[key] : "none", value);
            }
        }
    }

    World& m_world;
    const Fault& m_fault;
    const Expected m_expected;
    Complaints m_complaints;
};

}  // namespace

std::string describe(const Fault& fault) {
    return describe(fault.call) + " fails with " + std::to_string(fault.code);
}

Baseline baselineOf(World& world, Phase phase) {
    world.bringTo(phase);
    const LogCapture log(UniLogSeverityLevel::Warning);
    VmbSimJournalStart();
    const Outcome outcome = world.run(phase);
    VmbSimJournalStop();
    Baseline baseline{callsOf(phase, journalLines()), {}};
    Complaints complaints;
    if (textsOf(log) != logOf(phase)) complaints = textsOf(log);
    if (outcome.answer != Answer::Yes)
        complaints.push_back("the answer: " + nameOf(outcome.answer) + outcome.thrown);
    // What an acquisition in the middle of a phase has left is the next recording's to bring back.
    for (const std::string& more : recordAgain(world, Recovery::Prepare)) complaints.push_back(more);
    for (const char* camera : kCameras) baseline.settings[camera] = world.settingsOf(camera);
    for (const std::string& more : examineEnd(world, {})) complaints.push_back(more);
    if (!complaints.empty()) {
        throw std::runtime_error(std::string(nameOf(phase)) + " without a fault:" + joined(complaints));
    }
    return baseline;
}

std::vector<Fault> faultsOf(const Baseline& baseline, bool all) {
    std::vector<Fault> faults;
    int turn = 0;
    for (const Call& call : chosenOf(baseline.calls)) {
        // 7 has no factor in common with 20, so that all codes have their turn.
        std::set<VmbError_t> part{-1 - turn % 20};
        // Two turns for each call, where they do not take minutes.
        if (ZELT_SANITIZED == 0) part.insert(-1 - (turn + 10) % 20);
        turn += 7;
        for (VmbError_t code = -1; code >= kLastCode; --code) {
            // A list that is said to have grown has a rule of its own.
            const bool isSpecial = call.function == "VmbCamerasList" && code == VmbErrorMoreData;
            if (all || isSpecial || part.count(code) != 0) faults.push_back({call, code});
        }
    }
    return faults;
}

Complaints examine(World& world, const Baseline& baseline, const Fault& fault) {
    return Examination(world, fault).run(baseline);
}

}  // namespace faults
