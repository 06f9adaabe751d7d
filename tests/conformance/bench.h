/// The camera under test: found once, then set up for each test as far as the test needs it and put back
/// afterwards into the state it was found in. Nothing done here counts as coverage.
#pragma once

#include <stdbool.h>

#include "conformance.h"

enum { TEXT_SIZE = 256 };

/// A handle that the library never gave out.
extern const VmbHandle_t kForeignHandle;

/// Open with full access while a test that NEEDS_CAMERA runs.
extern VmbHandle_t camera;

/// The camera's ID; the ID of its interface.
extern char cameraId[TEXT_SIZE];
extern char cameraInterfaceId[TEXT_SIZE];

/// Finds the first GigE camera that opens with full access; false if there is none.
bool chooseCamera(void);

bool setUp(Need need);

/// Ends what the test left running, restores what was kept, closes, shuts down. A test that shuts the library
/// down itself calls setUp again before it ends.
void tearDown(Need need);

/// One round of discovery, complete on return.
bool discover(void);

/// Remembers the present value of a feature of the camera or of the system, to be restored at the end of the
/// test. The last kept is restored first, so a selector is to be kept and set before what it selects is kept.
void keep(const char* feature);
void keepOfSystem(const char* feature);

/// Keeps a feature's value and sets it.
void putInt(const char* feature, VmbInt64_t value);
void putFloat(const char* feature, double value);
void putEnum(const char* feature, const char* value);
void putBool(const char* feature, bool value);
void putString(const char* feature, const char* value);

/// Values that are only read along the way; a failure is a failed check.
VmbInt64_t intOf(const char* feature);
double floatOf(const char* feature);
const char* enumOf(const char* feature);

/// The smallest value of an integer feature plus `steps` increments.
VmbInt64_t stepOf(const char* feature, VmbInt64_t steps);

/// Does the camera have it?
bool hasFeature(const char* feature);

/// The camera's first feature of the type whose flags hold all of `flags`, null if it has none; the text
/// lives until the end of the test.
const char* findFeature(VmbFeatureData_t type, VmbFeatureFlags_t flags);

/// Runs a command of the camera; the second waits until it is done.
void runCommand(const char* command);
void runToEnd(const char* command);

/// Waits until a counter of the camera, which no callback announces, reaches a value; false when it does not.
bool reachesInt(const char* feature, VmbInt64_t value, uint32_t milliseconds);

/// Runs every feature of a handle through `visit`.
void forEachFeature(VmbHandle_t handle, void (*visit)(VmbHandle_t handle, const VmbFeatureInfo_t* info));
