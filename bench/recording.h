/// How fast the reference host records.
#pragma once

#include <filesystem>

#include "figure.h"

namespace bench {

/// Records with the `zelt_host` of `programs` in pairs with writing as many bytes without it. Throws
/// std::runtime_error when it cannot record.
Figure recordingRate(const std::filesystem::path& programs);

}  // namespace bench
