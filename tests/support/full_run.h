/// How much of the long tests is run; the environment may ask for the whole.
#pragma once

#include <cstdlib>
#include <string_view>

namespace test_support {

/// False where everything takes several times as long: unoptimised, under the sanitizers, by Wine.
#if defined(NDEBUG) && !defined(_WIN32)
inline constexpr bool kRunsFast = true;
#else
inline constexpr bool kRunsFast = false;
#endif

/// True when ZELT_TEST_FULL is "1"; otherwise they are to take a part that is over within seconds.
inline bool isFullRun() {
    const char* const asked = std::getenv("ZELT_TEST_FULL");
    return asked != nullptr && std::string_view(asked) == "1";
}

}  // namespace test_support
