#include "native_thread.h"

#if defined(__linux__)
#include <sys/prctl.h>
#endif

namespace simulator {

const Nanoseconds kWakeUpLatency = 150 * kMicrosecond;

void prepareLibraryThread([[maybe_unused]] const char* name) {
#if defined(__linux__)
    // The default slack of 50 microseconds would be part of every delivery.
    prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    prctl(PR_SET_NAME, name, 0UL, 0UL, 0UL);
#endif
}

}  // namespace simulator
