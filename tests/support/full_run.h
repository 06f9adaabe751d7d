/// Whether the long tests run whole, which the environment asks for.
#pragma once

#include <cstdlib>
#include <string_view>

namespace test_support {

/// True when ZELT_TEST_FULL is "1"; otherwise they are to take a part that is over within seconds.
inline bool isFullRun() {
    const char* const asked = std::getenv("ZELT_TEST_FULL");
    return asked != nullptr && std::string_view(asked) == "1";
}

}  // namespace test_support
