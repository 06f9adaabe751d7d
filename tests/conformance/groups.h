/// The tables of tests, one per file, in the order they run.
#pragma once

#include "conformance.h"

// clang-format off
#define TEST_GROUPS(X)    \
    X(kSessionTests)      \
    X(kDiscoveryTests)    \
    X(kInterfaceTests)    \
    X(kCameraTests)       \
    X(kListTests)         \
    X(kInfoTests)         \
    X(kNumberTests)       \
    X(kEnumTests)         \
    X(kTextTests)         \
    X(kOrderTests)        \
    X(kInvalidationTests) \
    X(kFrameTests)        \
    X(kCaptureTests)      \
    X(kAcquisitionTests)  \
    X(kCallbackTests)     \
    X(kChunkTests)        \
    X(kRegisterTests)     \
    X(kSettingsTests)     \
    X(kFeatureTests)      \
    X(kEntryTests)        \
    X(kSystemTests)
// clang-format on

#define GROUP_DECLARATION(group) extern const Test group[];
TEST_GROUPS(GROUP_DECLARATION)
#undef GROUP_DECLARATION
