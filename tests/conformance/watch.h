/// Records of invalidation callbacks.
#pragma once

#include <stdbool.h>

#include "vimba_c_types.h"

/// Given to the library as context, so it must outlive the registration: make it static.
typedef struct {
    unsigned calls;
    VmbHandle_t owner;
    char feature[64];
    bool onTestThread;
    /// More for the callback to do, outside the lock, before it counts as called; or null.
    void (*duringCallback)(VmbHandle_t owner, const char* feature);
} Watch;

/// Two callbacks that do the same, for the registrations are kept apart by them.
void recordInvalidation(const VmbHandle_t owner, const char* feature, void* watch);
void recordInvalidationToo(const VmbHandle_t owner, const char* feature, void* watch);

/// An empty record, registered with recordInvalidation.
void watchFeature(Watch* watch, VmbHandle_t owner, const char* feature);

unsigned callsOf(const Watch* watch);

bool waitForCalls(const Watch* watch, unsigned calls);

/// Sets Gain and waits for its callback: whatever was called for earlier sets has been called by then.
void settleInvalidations(void);
