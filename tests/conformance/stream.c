#include "stream.h"

#include <stdlib.h>
#include <string.h>

#include "bench.h"
#include "vimba_c.h"
#include "waiting.h"

Stream stream;

static bool enterCallback(VmbHandle_t owner, const VmbFrame_t* frame) {
    lockRecords();
    stream.overlapped |= stream.inside++ > 0;
    if (stream.arrivalCount < MAX_ARRIVALS) {
        stream.arrivals[stream.arrivalCount] = (Arrival){frame, *frame, owner, onTestThread()};
    }
    const bool requeues = stream.requeues;
    unlockRecords();
    return requeues;
}

void recordArrival(const VmbHandle_t owner, VmbFrame_t* frame) {
    const bool requeues = enterCallback(owner, frame);
    VmbError_t result = VmbErrorSuccess;
    if (stream.duringCallback) stream.duringCallback(owner, frame);
    if (requeues) result = VmbCaptureFrameQueue(owner, frame, recordArrival);
    lockRecords();
    if (result != VmbErrorSuccess) stream.requeueResult = result;
    --stream.inside;
    ++stream.arrivalCount;
    unlockRecords();
}

unsigned arrivalCount(void) {
    return readCount(&stream.arrivalCount);
}

void useSoftwareTrigger(void) {
    putEnum("AcquisitionMode", "Continuous");
    putEnum("TriggerSelector", "FrameStart");
    putEnum("TriggerMode", "On");
    putEnum("TriggerSource", "Software");
    putEnum("ExposureAuto", "Off");
    putFloat("ExposureTimeAbs", 2000);
    putInt("Height", stepOf("Height", 32));
}

VmbFrame_t* makeFrame(void) {
    if (stream.frameCount == MAX_FRAMES) abort();
    const VmbUint32_t size = (VmbUint32_t)intOf("PayloadSize");
    const unsigned place = stream.frameCount++;
    VmbFrame_t* frame = &stream.frames[place];
    memset(frame, 0, sizeof *frame);
    stream.buffers[place] = calloc(1, size);
    frame->buffer = stream.buffers[place];
    frame->bufferSize = size;
    return frame;
}

void prepareStream(unsigned frames) {
    useSoftwareTrigger();
    for (unsigned i = 0; i < frames; ++i) SUCCEEDS(VmbFrameAnnounce(camera, makeFrame(), sizeof(VmbFrame_t)));
}

void startStream(void) {
    SUCCEEDS(VmbCaptureStart(camera));
    for (unsigned i = 0; i < stream.frameCount; ++i) {
        SUCCEEDS(VmbCaptureFrameQueue(camera, &stream.frames[i], recordArrival));
    }
    SUCCEEDS(VmbFeatureCommandRun(camera, "AcquisitionStart"));
}

bool triggerUntil(bool (*isDone)(const void* subject), const void* subject) {
    bool done = false;
    for (int i = 0; i < PATIENCE_MS / TRIGGER_MS && !done; ++i) {
        if (!SUCCEEDS(VmbFeatureCommandRun(camera, "TriggerSoftware"))) return false;
        done = isDone(subject);
    }
    return CHECK(done);
}

static bool hasArrived(const void* wanted) {
    return waitForCountWithin(&stream.arrivalCount, *(const unsigned*)wanted, TRIGGER_MS);
}

bool takeImage(void) {
    const unsigned wanted = arrivalCount() + 1;
    return triggerUntil(hasArrived, &wanted);
}

bool takeImages(unsigned count) {
    bool good = true;
    for (unsigned i = 0; i < count && good; ++i) good = takeImage();
    return good;
}

void stopStream(void) {
    SUCCEEDS(VmbFeatureCommandRun(camera, "AcquisitionStop"));
    SUCCEEDS(VmbCaptureEnd(camera));
    SUCCEEDS(VmbCaptureQueueFlush(camera));
    SUCCEEDS(VmbFrameRevokeAll(camera));
}

void dropStream(void) {
    VmbFeatureCommandRun(camera, "AcquisitionStop");
    VmbCaptureEnd(camera);
    VmbCaptureQueueFlush(camera);
    VmbFrameRevokeAll(camera);
    for (unsigned i = 0; i < MAX_FRAMES; ++i) free(stream.buffers[i]);
    lockRecords();
    memset(&stream, 0, sizeof stream);
    unlockRecords();
}
