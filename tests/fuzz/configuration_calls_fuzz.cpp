// Any sequence of calls on a configuration: the first byte chooses plug-in or channel, the rest the calls.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>

#include "channel_config_calls.h"
#include "plugin_config_calls.h"

namespace {

template <class Calls>
std::string difference(std::span<const std::uint8_t> bytes) {
    Calls calls;
    calls.run(bytes);
    return calls.difference();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::span<const std::uint8_t> bytes(data + 1, size - 1);
    const std::string found = data[0] % 4 == 0 ? difference<property_tests::PluginConfigCalls>(bytes)
                                               : difference<property_tests::ChannelConfigCalls>(bytes);
    if (found.empty()) return 0;
    std::fprintf(stderr, "%s\n", found.c_str());
    std::abort();
}
