// Any text as any value: the first byte chooses the type, the rest is the text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "text_conversion.h"

namespace {

using namespace channel_config;
using property_tests::conversionDifference;

std::string difference(std::uint8_t type, const std::string& text) {
    switch (type % 11) {
        case 0:
            return conversionDifference<bool>(text);
        case 1:
            return conversionDifference<int>(text);
        case 2:
            return conversionDifference<unsigned int>(text);
        case 3:
            return conversionDifference<double>(text);
        case 4:
            return conversionDifference<std::string>(text);
        case 5:
            return conversionDifference<ChannelID>(text);
        case 6:
            return conversionDifference<PhysicalQuantity>(text);
        case 7:
            return conversionDifference<UserScalingMode>(text);
        case 8:
            return conversionDifference<DAQSampleResolution>(text);
        case 9:
            return conversionDifference<SampleOccurrenceType>(text);
        default:
            return conversionDifference<DAQChannelType>(text);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(data + 1, data + size);
    const std::string found = difference(data[0], text);
    if (found.empty()) return 0;
    std::fprintf(stderr, "type %d, text '%s': %s\n", data[0] % 11, text.c_str(), found.c_str());
    std::abort();
}
