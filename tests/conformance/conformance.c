#include "conformance.h"

#include <math.h>
#include <stdio.h>
#include <string.h>

static unsigned testCount;
static unsigned checkCount;
static unsigned failureCount;
static const char* testName = "";
static const char* subject;

static const char* const kCodeNames[] = {
    "VmbErrorSuccess",    "VmbErrorInternalFault",  "VmbErrorApiNotStarted", "VmbErrorNotFound",
    "VmbErrorBadHandle",  "VmbErrorDeviceNotOpen",  "VmbErrorInvalidAccess", "VmbErrorBadParameter",
    "VmbErrorStructSize", "VmbErrorMoreData",       "VmbErrorWrongType",     "VmbErrorInvalidValue",
    "VmbErrorTimeout",    "VmbErrorOther",          "VmbErrorResources",     "VmbErrorInvalidCall",
    "VmbErrorNoTL",       "VmbErrorNotImplemented", "VmbErrorNotSupported",  "VmbErrorIncomplete",
    "VmbErrorIO",
};

const char* codeName(VmbError_t code) {
    const int64_t index = -(int64_t)code;
    const int64_t count = (int64_t)(sizeof kCodeNames / sizeof *kCodeNames);
    return index >= 0 && index < count ? kCodeNames[index] : "?";
}

void beginTest(const char* name) {
    ++testCount;
    testName = name;
    subject = NULL;
}

void checkAbout(const char* newSubject) {
    subject = newSubject;
}

bool printSummary(void) {
    printf("%u tests, %u checks, %u failed\n", testCount, checkCount, failureCount);
    return failureCount == 0;
}

/// Counts the check and, if it failed, begins its line of the report.
static bool settle(Spot spot, bool held) {
    ++checkCount;
    if (held) return true;
    ++failureCount;
    const char* slash = strrchr(spot.file, '/');
    printf("%s:%d: in %s", slash ? slash + 1 : spot.file, spot.line, testName);
    if (subject) printf(" (%s)", subject);
    printf(": %s: ", spot.expression);
    return false;
}

bool checkTrue(Spot spot, bool condition) {
    if (settle(spot, condition)) return true;
    printf("wanted true, got false\n");
    return false;
}

bool checkInt(Spot spot, int64_t wanted, int64_t got) {
    if (settle(spot, wanted == got)) return true;
    printf("wanted %lld, got %lld\n", (long long)wanted, (long long)got);
    return false;
}

bool checkText(Spot spot, const char* wanted, const char* got) {
    if (settle(spot, wanted && got && strcmp(wanted, got) == 0)) return true;
    printf("wanted \"%s\", got \"%s\"\n", wanted ? wanted : "(null)", got ? got : "(null)");
    return false;
}

bool checkNear(Spot spot, double wanted, double got, double tolerance) {
    if (settle(spot, fabs(wanted - got) <= tolerance)) return true;
    printf("wanted %.9g within %.3g, got %.9g\n", wanted, tolerance, got);
    return false;
}

bool checkCode(Spot spot, VmbError_t wanted, VmbError_t got) {
    if (settle(spot, wanted == got)) return true;
    printf("wanted %s, got %s (%d)\n", codeName(wanted), codeName(got), (int)got);
    return false;
}

bool checkEither(Spot spot, VmbError_t first, VmbError_t second, VmbError_t got) {
    if (settle(spot, got == first || got == second)) return true;
    printf("wanted %s or %s, got %s (%d)\n", codeName(first), codeName(second), codeName(got), (int)got);
    return false;
}

bool checkFails(Spot spot, VmbError_t got) {
    if (settle(spot, got < 0)) return true;
    printf("wanted an error, got %s (%d)\n", codeName(got), (int)got);
    return false;
}
