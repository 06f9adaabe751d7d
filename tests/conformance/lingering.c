#include "lingering.h"

#include "conformance.h"
#include "waiting.h"

static unsigned entered;
static bool mayLeave;
static bool hasLeft;
static bool returned;
static bool returnedTooEarly;
static void (*waitingCall)(void);

/// How long a call is watched for not returning.
enum { WATCH_MS = 300 };

static bool isTrue(const void* record) {
    return *(const bool*)record;
}

static void setFlag(bool* flag) {
    lockRecords();
    *flag = true;
    unlockRecords();
}

void prepareLingering(void) {
    lockRecords();
    entered = 0;
    mayLeave = hasLeft = returned = returnedTooEarly = false;
    unlockRecords();
}

void linger(void) {
    lockRecords();
    ++entered;
    unlockRecords();
    waitUntil(isTrue, &mayLeave, PATIENCE_MS);
    setFlag(&hasLeft);
}

bool waitForLingerer(uint32_t milliseconds) {
    return waitForCountWithin(&entered, 1, milliseconds);
}

static void callBeside(void) {
    waitingCall();
    lockRecords();
    returnedTooEarly = !hasLeft;
    unlockRecords();
    setFlag(&returned);
}

void checkThatItWaits(void (*call)(void)) {
    waitingCall = call;
    runBeside(callBeside);
    CHECK(!waitUntil(isTrue, &returned, WATCH_MS));
    setFlag(&mayLeave);
    joinBeside();
    CHECK(!returnedTooEarly);
}
