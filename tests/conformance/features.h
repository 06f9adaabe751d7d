/// What cameras and the system are known to have, as tables.
#pragma once

#include "vimba_c_types.h"

/// Cameras of a colour sensor have more; what only some models have is checked where it is found.
typedef enum { ALWAYS, COLOUR, SOME_MODELS } Presence;

/// No value is promised.
#define ANY INT64_MIN

/// Stands for int or float: firmware differs.
enum { NUMBER = 100, INT = 1, FLOAT = 2, ENUM = 3, STRING = 4, BOOL = 5, COMMAND = 6 };

/// Flags that must be set; those not named must not be. ANY_ACCESS promises nothing.
enum { ANY_ACCESS = 0, R = VmbFeatureFlagsRead, W = VmbFeatureFlagsWrite, RW = R | W };

typedef struct {
    const char* name;
    int type;
    unsigned access;
    const char* unit;  ///< null when none is known
    Presence presence;
} FeatureRow;

typedef struct {
    const char* name;
    VmbInt64_t min;
    VmbInt64_t max;
    VmbInt64_t defaults[3];  ///< any of these, or ANY
} IntRow;

typedef struct {
    const char* name;
    double min;  ///< NAN for any, as in the other fields
    double max;
    double defaults[2];
} FloatRow;

typedef struct {
    const char* name;
    const char* value;
} DefaultRow;

typedef struct {
    const char* feature;
    const char* entry;
    VmbInt64_t number;
    Presence presence;
} EntryRow;

/// Each ends with a row without name.
extern const FeatureRow kCameraFeatures[];
extern const FeatureRow kSystemFeatures[];
extern const IntRow kIntRows[];
extern const FloatRow kFloatRows[];
extern const DefaultRow kEnumDefaults[];
extern const DefaultRow kBoolDefaults[];
extern const EntryRow kEntryRows[];

/// Existence, type, access and unit of one feature. `colour`: the camera's sensor sees colours.
void checkFeatureRow(VmbHandle_t handle, const FeatureRow* row, bool colour);
