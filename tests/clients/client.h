/// What the steps of the client share: the camera, checks that end the program, and short ways to ask.
#pragma once

#include "loaded_library.h"

enum { PATIENCE_MS = 60000, WIDTH = 640, HEIGHT = 480, IMAGE_SIZE = WIDTH * HEIGHT };

/// Where the clock of the first camera starts: beyond 32 bits.
#define MANY_TICKS (UINT64_C(1) << 40)

/// The id of the first camera, and its handle once it is open.
extern const char* const kFirst;
extern VmbHandle_t camera;

/// Ends the program with exit code 1 when something does not hold. Not for callbacks.
void check(bool holds, const char* sentence);

/// The same for the code that a function answered.
void answers(VmbError_t expected, VmbError_t code, const char* sentence);

/// SUCCEEDS(VmbStartup());
#define SUCCEEDS(call) answers(VmbErrorSuccess, api.call, #call " succeeds")

/// Runs a command to its end.
void run(VmbHandle_t owner, const char* command);

VmbInt64_t integer(VmbHandle_t owner, const char* feature);

/// Sets an enumeration of the camera.
void choose(const char* feature, const char* entry);

/// The steps, in their order.
#define CLIENT_STEPS(ROW)                    \
    ROW(library_starts_up)                   \
    ROW(cameras_are_listed)                  \
    ROW(camera_opens)                        \
    ROW(features_have_their_types)           \
    ROW(integers_are_read_and_set)           \
    ROW(floats_are_read_and_set)             \
    ROW(enumerations_are_read_and_set)       \
    ROW(texts_are_read_and_set)              \
    ROW(switches_and_bytes_are_read_and_set) \
    ROW(commands_run)                        \
    ROW(mistakes_are_told_apart)             \
    ROW(frames_arrive_by_callback)           \
    ROW(frames_are_waited_for)               \
    ROW(starts_tell_their_time)              \
    ROW(cables_are_noticed)                  \
    ROW(library_shuts_down)

#define CLIENT_STEP(name) void name(void);
CLIENT_STEPS(CLIENT_STEP)
#undef CLIENT_STEP
