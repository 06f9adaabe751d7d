/// The smallest test harness that serves: tests are functions in tables, checks count, report and go on.
///
/// Checks are made on the test thread alone; callbacks record what they see and leave the judging to the
/// test.
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "vimba_c_types.h"

/// What must be in place before a test runs; each level includes those above it.
typedef enum { NEEDS_NOTHING, NEEDS_START, NEEDS_DISCOVERY, NEEDS_CAMERA } Need;

typedef struct {
    const char* name;
    void (*run)(void);
    Need need;
} Test;

#define TEST(need, function) \
    { #function, function, need }
#define END_OF_TESTS \
    { NULL, NULL, NEEDS_NOTHING }

/// Where a check stands and what it looks at.
typedef struct {
    const char* file;
    int line;
    const char* expression;
} Spot;

#define SPOT(expression) ((Spot){__FILE__, __LINE__, expression})

/// Every check returns whether it held.
#define CHECK(condition) checkTrue(SPOT(#condition), condition)
#define CHECK_INT(wanted, got) checkInt(SPOT(#got), wanted, got)
#define CHECK_TEXT(wanted, got) checkText(SPOT(#got), wanted, got)
#define CHECK_NEAR(wanted, got, tolerance) checkNear(SPOT(#got), wanted, got, tolerance)
#define CHECK_CODE(wanted, call) checkCode(SPOT(#call), wanted, call)
#define CHECK_EITHER(first, second, call) checkEither(SPOT(#call), first, second, call)
#define CHECK_FAILS(call) checkFails(SPOT(#call), call)
#define SUCCEEDS(call) checkCode(SPOT(#call), VmbErrorSuccess, call)

bool checkTrue(Spot spot, bool condition);
bool checkInt(Spot spot, int64_t wanted, int64_t got);
bool checkText(Spot spot, const char* wanted, const char* got);
bool checkNear(Spot spot, double wanted, double got, double tolerance);
bool checkCode(Spot spot, VmbError_t wanted, VmbError_t got);
bool checkEither(Spot spot, VmbError_t first, VmbError_t second, VmbError_t got);
bool checkFails(Spot spot, VmbError_t got);

/// Names the thing the following checks are about, for loops over tables; null for nothing in particular.
/// The text must live until the next call.
void checkAbout(const char* subject);

/// The declared name of an error code, "?" for a number that is none.
const char* codeName(VmbError_t code);

/// Marks the beginning of a test in the reports.
void beginTest(const char* name);

/// Prints "N tests, M checks, K failed"; returns whether nothing failed.
bool printSummary(void);
