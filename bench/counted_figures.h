/// Figures that are counted or worked out and so are the same on every machine.
#pragma once

#include "figure.h"

namespace bench {

/// What a normal frame touches, allocates, asks of the system and waits for.
Figures figuresOfNormalFrames();
/// Calls of the vendor's library while the host reads all settings.
Figure vendorCallsOfReadSettings();
/// Frames lost while one camera's sink stalls for as long as the buffers last.
Figure framesLostByAStall();
/// How far the fixed-rate times are off the exact line.
Figure timeTranslation();
/// Pulse numbers that differ from those worked out in big integers.
Figure auxIndices();

/// All of them, in this order. The log must be switched off, as for each of them.
Figures countedFigures();

}  // namespace bench
