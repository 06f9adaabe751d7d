/// Calls of the vendor's library, taken from a journal, that a test lets fail one after the other.
#pragma once

#include <map>
#include <ostream>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "simulator.h"
#include "zelt_gige_camera_channel_rows.h"

namespace test_support {

/// The nth call of a function, for a feature or a camera if it has a text argument.
struct Fault {
    std::string function;
    std::string argument;
    int nth = 1;
    bool beforeRead = false;  ///< the call that follows only reads

    void arm(VmbError_t code) const {
        ASSERT_EQ(VmbSimFailCall(function.c_str(), argument.empty() ? nullptr : argument.c_str(), nth, code),
                  VmbErrorSuccess);
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
    return stream << fault.nth << ". " << fault.function << "(" << fault.argument << ")";
}

/// Every call of the host's in the journal as a fault of its own.
inline std::vector<Fault> faultsOfJournal() {
    std::vector<Fault> faults;
    std::map<std::pair<std::string, std::string>, int> seen;
    const std::regex call("(\\w+)\\((?:[^\",]+, )?(?:\"([^\"]*)\")?.*");
    for (const std::string& line : Simulator::journal()) {
        std::smatch parts;
        if (!std::regex_match(line, parts, call)) {
            ADD_FAILURE() << "not understood: " << line;
            continue;
        }
        if (!faults.empty()) faults.back().beforeRead = parts[1].str().find("Set") == std::string::npos;
        faults.push_back({parts[1], parts[2], ++seen[{parts[1], parts[2]}]});
    }
    return faults;
}

inline bool isOptional(const std::string& feature) {
    for (const zelt_gige_camera::NumberRow& row : zelt_gige_camera::numberRows()) {
        if (feature == row.feature) return row.optional;
    }
    for (const zelt_gige_camera::AutoRow& row : zelt_gige_camera::autoRows()) {
        if (feature == row.feature) return true;
    }
    return feature == "WidthMax" || feature == "HeightMax";
}

/// What a camera need not have, or need not tell, fails without a word.
inline bool mayFailSilently(const Fault& fault) {
    for (const char* query : {"VmbFeatureIntRangeQuery", "VmbFeatureIntIncrementQuery",
                              "VmbFeatureFloatRangeQuery", "VmbFeatureEnumRangeQuery", "VmbFeatureInfoQuery",
                              "VmbCaptureFrameQueue", "VmbFeatureInvalidationUnregister"}) {
        if (fault.function == query) return true;
    }
    const bool isRead = fault.function.find("Get") != std::string::npos;
    if (isRead && isOptional(fault.argument)) return true;
    // Best effort, as the packet size and the selector of a ratio that is only read.
    return (fault.argument == "BalanceRatioSelector" && fault.beforeRead) ||
           fault.argument == "GVSPAdjustPacketSize";
}

}  // namespace test_support
