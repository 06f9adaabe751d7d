/* Both headers are for C programs, too: this file compiles only as long as that is true. */
#include "vimba_simulator.h"

_Static_assert(sizeof(VmbSimFrameStamp) == 40, "the stamp's fields follow each other without gaps");
_Static_assert(VMBINFINITE == 4294967295u, "all bits set, without a sign");
