/// What the frames of cameras notice when the settings of one of them are written.
#pragma once

#include "figure.h"

namespace bench {

/// Two figures: of the cameras that are not written, and of the one that is. The log must be switched off.
Figures figuresOfDisturbance();

}  // namespace bench
