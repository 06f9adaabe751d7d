#include <math.h>
#include <stdlib.h>

#include "client.h"

enum { FRAMES = 4, MOST_ARRIVALS = 2 * FRAMES };

static const char* const kStartEvent = "EventAcquisitionStartTimestamp";

static VmbFrame_t frames[FRAMES];
static unsigned char buffers[FRAMES][IMAGE_SIZE];

/// What the frame callback saw and did.
typedef struct Arrival {
    VmbFrame_t frame;
    VmbSimFrameStamp stamp;
    VmbError_t stampResult;
    VmbError_t queueResult;
} Arrival;

/// Written by the callback, read when VmbSimWaitForFrames has returned.
static Arrival arrivals[MOST_ARRIVALS];
static unsigned arrivalCount;

static void frameArrived(const VmbHandle_t owner, VmbFrame_t* frame) {
    if (arrivalCount == MOST_ARRIVALS) return;
    Arrival* arrival = &arrivals[arrivalCount++];
    arrival->frame = *frame;
    arrival->stampResult = api.VmbSimReadStamp(frame->buffer, frame->imageSize, &arrival->stamp);
    arrival->queueResult = api.VmbCaptureFrameQueue(owner, frame, frameArrived);
}

static void beginCapture(unsigned count, VmbFrameCallback callback) {
    arrivalCount = 0;
    check(integer(camera, "PayloadSize") == IMAGE_SIZE, "a picture has one byte for each pixel");
    for (unsigned i = 0; i < count; ++i) {
        frames[i] = (VmbFrame_t){.buffer = buffers[i], .bufferSize = IMAGE_SIZE};
        SUCCEEDS(VmbFrameAnnounce(camera, &frames[i], sizeof frames[i]));
    }
    SUCCEEDS(VmbCaptureStart(camera));
    for (unsigned i = 0; i < count; ++i) SUCCEEDS(VmbCaptureFrameQueue(camera, &frames[i], callback));
}

static void endCapture(void) {
    run(camera, "AcquisitionStop");
    SUCCEEDS(VmbCaptureEnd(camera));
    SUCCEEDS(VmbCaptureQueueFlush(camera));
    SUCCEEDS(VmbFrameRevokeAll(camera));
}

static void checkPicture(const VmbFrame_t* frame, const VmbSimFrameStamp* stamp) {
    check(frame->receiveStatus == VmbFrameStatusComplete, "the frame is complete");
    check(frame->receiveFlags == 15, "it has size, place, number and time");
    check(frame->width == WIDTH && frame->height == HEIGHT, "it has the size of the picture");
    check(frame->imageSize == IMAGE_SIZE, "it has one byte for each pixel");
    check(frame->pixelFormat == VmbPixelFormatMono8, "it has the number of Mono8");
    check(frame->timestamp >= MANY_TICKS, "its time has all its bits");
    check(stamp->frameId == frame->frameID, "its picture has its number");
    check(stamp->cameraTicks == frame->timestamp, "its picture has its time");
    check(stamp->width == WIDTH && stamp->height == HEIGHT, "its picture has its size");
}

static void checkRhythm(const VmbSimFrameStamp* earlier, const VmbSimFrameStamp* later) {
    const VmbInt64_t ticks = (VmbInt64_t)(later->cameraTicks - earlier->cameraTicks);
    const double trueNs = (double)(later->exposureStartNs - earlier->exposureStartNs);
    check(llabs(ticks - 20000000) <= 1, "50 Hz of the camera's clock are 20 ms of its ticks");
    check(fabs(trueNs * 1.000012 - 20e6) <= 2, "the camera's clock is 12 millionths fast");
}

static void checkArrivals(unsigned from) {
    for (unsigned i = from; i < from + FRAMES; ++i) {
        answers(VmbErrorSuccess, arrivals[i].stampResult, "the picture is whole");
        answers(VmbErrorSuccess, arrivals[i].queueResult, "a callback may queue its frame again");
        check(arrivals[i].frame.frameID == i + 1, "no frame is missing");
        checkPicture(&arrivals[i].frame, &arrivals[i].stamp);
        if (i > from) checkRhythm(&arrivals[i - 1].stamp, &arrivals[i].stamp);
    }
}

void frames_arrive_by_callback(void) {
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", HEIGHT));
    choose("PixelFormat", "Mono8");
    choose("TriggerSelector", "FrameStart");
    choose("TriggerMode", "Off");
    SUCCEEDS(VmbFeatureFloatSet(camera, "AcquisitionFrameRateAbs", 50));
    choose("AcquisitionMode", "MultiFrame");
    SUCCEEDS(VmbFeatureIntSet(camera, "AcquisitionFrameCount", FRAMES));
    beginCapture(FRAMES, frameArrived);
    for (unsigned from = 0; from < MOST_ARRIVALS; from += FRAMES) {
        run(camera, "AcquisitionStart");
        SUCCEEDS(VmbSimWaitForFrames(kFirst, from + FRAMES, PATIENCE_MS));
        check(arrivalCount == from + FRAMES, "each start brings as many frames as were asked for");
        checkArrivals(from);
        run(camera, "AcquisitionStop");
    }
    endCapture();
}

void frames_are_waited_for(void) {
    VmbSimFrameStamp stamp = {0};
    choose("TriggerMode", "On");
    choose("TriggerSource", "Software");
    choose("AcquisitionMode", "Continuous");
    beginCapture(1, NULL);
    run(camera, "AcquisitionStart");
    answers(VmbErrorInvalidAccess, api.VmbFeatureIntSet(camera, "Width", 320), "the width is locked now");
    answers(VmbErrorTimeout, api.VmbCaptureFrameWait(camera, frames, 20), "untriggered, nothing comes");
    run(camera, "TriggerSoftware");
    SUCCEEDS(VmbCaptureFrameWait(camera, frames, PATIENCE_MS));
    SUCCEEDS(VmbSimReadStamp(frames->buffer, frames->imageSize, &stamp));
    checkPicture(frames, &stamp);
    check(frames->frameID == 1, "frames are numbered anew with each capture");
    buffers[0][1000] ^= 1;
    answers(VmbErrorIncomplete, api.VmbSimReadStamp(frames->buffer, IMAGE_SIZE, &stamp),
            "one changed bit is found");
    endCapture();
}

/// Written by the callback, read when the frame behind the event has arrived.
typedef struct StartEvent {
    unsigned count;
    VmbInt64_t time;
    VmbInt64_t frameId;
    VmbError_t result;
} StartEvent;

static void startEventCame(const VmbHandle_t owner, const char* name, void* context) {
    StartEvent* event = context;
    ++event->count;
    event->result = api.VmbFeatureIntGet(owner, name, &event->time);
    if (event->result != VmbErrorSuccess) return;
    event->result = api.VmbFeatureIntGet(owner, "EventAcquisitionStartFrameID", &event->frameId);
}

static void takeOne(VmbUint64_t number) {
    run(camera, "AcquisitionStart");
    SUCCEEDS(VmbSimWaitForFrames(kFirst, number, PATIENCE_MS));
    run(camera, "AcquisitionStop");
}

void starts_tell_their_time(void) {
    static StartEvent event;
    choose("TriggerMode", "Off");
    choose("AcquisitionMode", "SingleFrame");
    choose("EventSelector", "AcquisitionStart");
    choose("EventNotification", "On");
    SUCCEEDS(VmbFeatureInvalidationRegister(camera, kStartEvent, startEventCame, &event));
    beginCapture(1, frameArrived);
    takeOne(1);
    answers(VmbErrorSuccess, event.result, "the event can be read in its callback");
    check(event.count == 1, "a start is one event");
    const VmbFrame_t* frame = &arrivals[0].frame;
    check(event.frameId == (VmbInt64_t)frame->frameID, "the start names its first frame");
    check(llabs((VmbInt64_t)frame->timestamp - event.time - 4200) <= 1,
          "the first exposure begins 4.2 us after the start");
    SUCCEEDS(VmbFeatureInvalidationUnregister(camera, kStartEvent, startEventCame));
    takeOne(2);
    check(event.count == 1, "nobody listens to the second start");
    endCapture();
}
