#include "calls.h"

#include <stdatomic.h>
#include <stdio.h>

#include "conformance.h"

typedef struct {
    const char* name;
    Outcomes outcomes;
} Function;

#define FUNCTION_ROW(name, outcomes) {#name, outcomes},
static const Function kFunctions[] = {VMB_FUNCTIONS(FUNCTION_ROW)};
#undef FUNCTION_ROW

_Static_assert(CALL_COUNT == 58, "the interface has 58 functions");

static atomic_uint successes[CALL_COUNT];
static atomic_uint failures[CALL_COUNT];
static atomic_bool notOffered[CALL_COUNT];

VmbError_t countCall(int function, VmbError_t result) {
    atomic_fetch_add(result == VmbErrorSuccess ? &successes[function] : &failures[function], 1u);
    return result;
}

void noteNotOffered(int function) {
    atomic_store(&notOffered[function], true);
}

static void checkFunction(int function) {
    const Function* row = &kFunctions[function];
    checkAbout(row->name);
    if (row->outcomes == SUCCEEDS_IF_OFFERED && atomic_load(&notOffered[function])) {
        printf("%s: nothing it could succeed on is offered\n", row->name);
    } else {
        CHECK(atomic_load(&successes[function]) > 0);
    }
    if (row->outcomes != NEVER_FAILS) CHECK(atomic_load(&failures[function]) > 0);
}

void checkThatEveryFunctionWasCovered(void) {
    for (int function = 0; function < CALL_COUNT; ++function) checkFunction(function);
}
