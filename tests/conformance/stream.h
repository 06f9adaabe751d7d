/// Images on demand: a stream of small frames, each exposed by a software trigger, so that no test depends on
/// how fast the machine is. Nothing done here counts as coverage.
#pragma once

#include <stdbool.h>

#include "vimba_c_types.h"

enum { MAX_FRAMES = 16, MAX_ARRIVALS = 64 };

typedef struct {
    const VmbFrame_t* frame;
    VmbFrame_t content;
    VmbHandle_t owner;
    bool onTestThread;
} Arrival;

/// The records below `frameCount` are written by the frame callback, under the lock of waiting.h.
typedef struct {
    VmbFrame_t frames[MAX_FRAMES];
    void* buffers[MAX_FRAMES];
    unsigned frameCount;
    bool requeues;  ///< queue each frame again from the callback
    void (*duringCallback)(VmbHandle_t owner, VmbFrame_t* frame);  ///< more for the callback to do, or null
    unsigned arrivalCount;
    Arrival arrivals[MAX_ARRIVALS];
    unsigned inside;
    bool overlapped;
    VmbError_t requeueResult;  ///< the last that was not success
} Stream;

extern Stream stream;

/// The frame callback of the stream.
void recordArrival(const VmbHandle_t owner, VmbFrame_t* frame);

/// Small images by software trigger, continuous acquisition, exposure of a few milliseconds.
void useSoftwareTrigger(void);

/// Makes a frame with a buffer for one payload at the next place of the stream.
VmbFrame_t* makeFrame(void);

/// useSoftwareTrigger, then that many frames made and announced.
void prepareStream(unsigned frames);

/// Capture started, all frames queued in order, acquisition started.
void startStream(void);

/// A trigger may come before the camera is ready and is then ignored without a word, so it is given again as
/// long as `isDone`, which may wait for TRIGGER_MS, does not hold.
enum { TRIGGER_MS = 3000 };
bool triggerUntil(bool (*isDone)(const void* subject), const void* subject);

/// Triggers one image and waits until a further frame has arrived.
bool takeImage(void);
bool takeImages(unsigned count);

/// The usual stop: acquisition, capture, flush, revoke all.
void stopStream(void);

/// Ends whatever still runs, without judging it, and frees the buffers.
void dropStream(void);

unsigned arrivalCount(void);
