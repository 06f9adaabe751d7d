/// The camera simulator in the hands of a test. Header only: a test that uses it links the simulator.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vimba_simulator.h"

namespace test_support {

inline constexpr const char* kColourCamera = "DEV_000F31A10001";
inline constexpr const char* kMonochromeCamera = "DEV_000F31A10002";

/// Long enough that only a hang runs into it.
inline constexpr std::uint32_t kPatienceMs = 30'000;

/// Loads a scenario afresh. To be made before the library is started and destroyed after it was shut down.
class Simulator {
  public:
    explicit Simulator(const char* scenario = "two-cameras") { VmbSimLoadScenario(scenario); }
    ~Simulator() {
        VmbSimJournalStop();
        VmbSimClearFaults();
    }
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// The journal's calls of one thread kind ("host", "frame", "event", "discovery"), without the bracket.
    static std::vector<std::string> journal(const std::string& thread = "host") {
        std::string text(VmbSimJournalText(nullptr, 0), '\0');
        VmbSimJournalText(text.data(), text.size());
        std::vector<std::string> lines;
        std::istringstream stream(text.c_str());
        const std::string bracket = "[" + thread + "] ";
        for (std::string line; std::getline(stream, line);) {
            const bool isCall = line.find("): misuse: ") == std::string::npos;
            if (isCall && line.rfind(bracket, 0) == 0) lines.push_back(line.substr(bracket.size()));
        }
        return lines;
    }

    /// What was recorded as misuse since the scenario was loaded, one line each.
    static std::string misuses() {
        std::string text(VmbSimMisuseText(nullptr, 0), '\0');
        VmbSimMisuseText(text.data(), text.size());
        text.pop_back();
        return text;
    }

    /// Vendor functions of the journal's host lines, in order.
    static std::vector<std::string> calledFunctions() {
        std::vector<std::string> functions = journal();
        for (std::string& line : functions) line.resize(line.find('('));
        return functions;
    }
};

/// Compares what was recorded as misuse with what a test expects at its end: nothing, unless it says
/// otherwise.
struct ExpectedMisuses {
    ~ExpectedMisuses() {
        std::set<std::string> seen;
        std::istringstream stream(Simulator::misuses());
        const std::string separator = ": misuse: ";
        for (std::string line; std::getline(stream, line);) {
            seen.insert(line.substr(line.rfind(separator) + separator.size()));
        }
        EXPECT_EQ(seen, reasons) << Simulator::misuses();
    }
    std::set<std::string> reasons;
};

}  // namespace test_support
