/* Both headers are for C programs, too: this file compiles only as long as that is true. */
#include "vimba_simulator.h"

_Static_assert(sizeof(VmbSimFrameStamp) == 40, "the stamp's fields follow each other without gaps");
