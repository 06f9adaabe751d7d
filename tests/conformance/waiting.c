#include "waiting.h"

typedef struct {
    const unsigned* count;
    unsigned wanted;
} Target;

static bool isReached(const void* record) {
    const Target* target = record;
    return *target->count >= target->wanted;
}

bool waitForCountWithin(const unsigned* count, unsigned wanted, uint32_t milliseconds) {
    const Target target = {count, wanted};
    return waitUntil(isReached, &target, milliseconds);
}

bool waitForCount(const unsigned* count, unsigned wanted) {
    return waitForCountWithin(count, wanted, PATIENCE_MS);
}

unsigned readCount(const unsigned* count) {
    lockRecords();
    const unsigned value = *count;
    unlockRecords();
    return value;
}

bool pollUntil(bool (*holds)(void)) {
    return pollWithin(holds, PATIENCE_MS);
}

bool pollWithin(bool (*holds)(void), uint32_t milliseconds) {
    const double end = secondsNow() + milliseconds / 1000.0;
    while (!holds()) {
        if (secondsNow() > end) return false;
        letOthersRun();
    }
    return true;
}
