/// Whether cameras on different cores slow each other down.
#pragma once

#include "figure.h"

namespace bench {

/// The frames that all cores take together, of 16 cameras, by those that each of them takes while the others
/// rest. The log must be switched off.
Figure throughputOfAllCores();

}  // namespace bench
