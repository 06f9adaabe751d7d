#include <stdio.h>
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "conformance.h"
#include "groups.h"
#include "waiting.h"

static const Test* const kGroups[] = {
#define GROUP_ROW(group) group,
    TEST_GROUPS(GROUP_ROW)
#undef GROUP_ROW
};

static void runTest(const Test* test) {
    beginTest(test->name);
    if (setUp(test->need)) test->run();
    checkAbout(NULL);
    tearDown(test->need);
}

static void runAll(const char* part) {
    for (size_t group = 0; group < sizeof kGroups / sizeof *kGroups; ++group) {
        for (const Test* test = kGroups[group]; test->run; ++test) {
            if (!part || strstr(test->name, part)) runTest(test);
        }
    }
}

/// Runs all tests, or those whose name contains the first argument. Coverage is judged when all have run.
int main(int argc, char** argv) {
    const char* part = argc > 1 ? argv[1] : NULL;
    setvbuf(stdout, NULL, _IOLBF, 0);
    prepareWaiting();
    beginTest("a_free_camera_is_found");
    const bool found = CHECK(chooseCamera());
    if (found) runAll(part);
    if (found && !part) {
        beginTest("every_function_was_seen_to_succeed_and_to_fail");
        checkThatEveryFunctionWasCovered();
    }
    return printSummary() ? 0 : 1;
}
