/// Announcing, queueing, waiting for, flushing and revoking frames.
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "stream.h"
#include "waiting.h"

static void frames_are_announced_and_revoked(void) {
    useSoftwareTrigger();
    VmbFrame_t* one = makeFrame();
    VmbFrame_t* other = makeFrame();
    SUCCEEDS(VmbFrameAnnounce(camera, one, sizeof *one));
    SUCCEEDS(VmbFrameAnnounce(camera, other, sizeof *other));
    SUCCEEDS(VmbFrameRevoke(camera, one));
    SUCCEEDS(VmbFrameAnnounce(camera, one, sizeof *one));
    SUCCEEDS(VmbFrameRevokeAll(camera));
    SUCCEEDS(VmbFrameAnnounce(camera, other, sizeof *other));
    SUCCEEDS(VmbFrameRevokeAll(camera));
    SUCCEEDS(VmbFrameRevokeAll(camera));
}

static void announced_frames_are_counted(void) {
    if (!hasFeature("StreamAnnouncedBufferCount")) return;
    const VmbInt64_t before = intOf("StreamAnnouncedBufferCount");
    prepareStream(3);
    CHECK_INT(before + 3, intOf("StreamAnnouncedBufferCount"));
    SUCCEEDS(VmbFrameRevokeAll(camera));
    CHECK_INT(before, intOf("StreamAnnouncedBufferCount"));
}

static void a_frame_must_be_announced_properly(void) {
    useSoftwareTrigger();
    VmbFrame_t* frame = makeFrame();
    CHECK_CODE(VmbErrorBadParameter, VmbFrameAnnounce(camera, NULL, sizeof *frame));
    CHECK_CODE(VmbErrorStructSize, VmbFrameAnnounce(camera, frame, sizeof *frame - 1));
    CHECK_CODE(VmbErrorStructSize, VmbFrameAnnounce(camera, frame, sizeof *frame + 1));
    frame->bufferSize = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbFrameAnnounce(camera, frame, sizeof *frame));
}

static void a_frame_must_be_revoked_properly(void) {
    VmbFrame_t neverAnnounced = {0};
    CHECK_CODE(VmbErrorBadParameter, VmbFrameRevoke(camera, NULL));
    // Open: a frame never announced is a bad argument or a bad handle.
    CHECK_EITHER(VmbErrorBadParameter, VmbErrorBadHandle, VmbFrameRevoke(camera, &neverAnnounced));
}

static void the_library_allocates_missing_buffers(void) {
    useSoftwareTrigger();
    VmbFrame_t* frame = makeFrame();
    frame->buffer = NULL;
    SUCCEEDS(VmbFrameAnnounce(camera, frame, sizeof *frame));
    if (!CHECK(frame->buffer != NULL)) return;
    memset(frame->buffer, 0, frame->bufferSize);
    startStream();
    takeImage();
    stopStream();
    CHECK_INT(VmbFrameStatusComplete, frame->receiveStatus);
}

static void a_missing_frame_is_not_queued(void) {
    SUCCEEDS(VmbCaptureStart(camera));
    // Open: an invalid frame is a bad handle, a missing one may be called a bad argument.
    CHECK_EITHER(VmbErrorBadHandle, VmbErrorBadParameter, VmbCaptureFrameQueue(camera, NULL, recordArrival));
    CHECK_EITHER(VmbErrorBadHandle, VmbErrorBadParameter, VmbCaptureFrameWait(camera, NULL, 1));
    SUCCEEDS(VmbCaptureEnd(camera));
}

static void queueing_without_announcing_does_no_harm(void) {
    useSoftwareTrigger();
    VmbFrame_t* frame = makeFrame();
    SUCCEEDS(VmbCaptureStart(camera));
    // Open: whether it is permitted.
    const VmbError_t result = VmbCaptureFrameQueue(camera, frame, recordArrival);
    CHECK(result <= VmbErrorSuccess);
    if (result == VmbErrorSuccess) {
        SUCCEEDS(VmbFeatureCommandRun(camera, "AcquisitionStart"));
        takeImage();
        SUCCEEDS(VmbFeatureCommandRun(camera, "AcquisitionStop"));
    }
    SUCCEEDS(VmbCaptureEnd(camera));
    SUCCEEDS(VmbCaptureQueueFlush(camera));
}

static void queueing_before_capture_starts_does_no_harm(void) {
    prepareStream(1);
    // Open: whether it is permitted.
    const VmbError_t result = VmbCaptureFrameQueue(camera, &stream.frames[0], recordArrival);
    CHECK_EITHER(VmbErrorSuccess, VmbErrorInvalidCall, result);
    SUCCEEDS(VmbCaptureStart(camera));
    if (result) SUCCEEDS(VmbCaptureFrameQueue(camera, &stream.frames[0], recordArrival));
    SUCCEEDS(VmbFeatureCommandRun(camera, "AcquisitionStart"));
    takeImage();
    stopStream();
}

static void waiting_for_a_frame_runs_out(void) {
    prepareStream(1);
    SUCCEEDS(VmbCaptureStart(camera));
    SUCCEEDS(VmbCaptureFrameQueue(camera, &stream.frames[0], NULL));
    const double start = secondsNow();
    CHECK_CODE(VmbErrorTimeout, VmbCaptureFrameWait(camera, &stream.frames[0], 100));
    CHECK(secondsNow() - start >= 0.09);
    CHECK_CODE(VmbErrorTimeout, VmbCaptureFrameWait(camera, &stream.frames[0], 0));
    SUCCEEDS(VmbCaptureEnd(camera));
    SUCCEEDS(VmbCaptureQueueFlush(camera));
    SUCCEEDS(VmbFrameRevokeAll(camera));
}

static bool isWaitedFor(const void* frame) {
    const VmbError_t result = VmbCaptureFrameWait(camera, frame, TRIGGER_MS);
    if (result != VmbErrorTimeout) SUCCEEDS(result);
    return result != VmbErrorTimeout;
}

static void a_frame_without_callback_is_waited_for(void) {
    prepareStream(2);
    SUCCEEDS(VmbCaptureStart(camera));
    for (int i = 0; i < 2; ++i) SUCCEEDS(VmbCaptureFrameQueue(camera, &stream.frames[i], NULL));
    SUCCEEDS(VmbFeatureCommandRun(camera, "AcquisitionStart"));
    for (int i = 0; i < 2; ++i) {
        triggerUntil(isWaitedFor, &stream.frames[i]);
        CHECK_INT(VmbFrameStatusComplete, stream.frames[i].receiveStatus);
        CHECK_INT(i + 1, (VmbInt64_t)stream.frames[i].frameID);
    }
    CHECK_INT(0, arrivalCount());
    stopStream();
}

static void queued_frames_are_flushed_without_callback(void) {
    prepareStream(3);
    startStream();
    SUCCEEDS(VmbCaptureQueueFlush(camera));
    SUCCEEDS(VmbCaptureFrameQueue(camera, &stream.frames[2], recordArrival));
    takeImage();
    CHECK_INT(1, arrivalCount());
    CHECK(stream.arrivals[0].frame == &stream.frames[2]);
    SUCCEEDS(VmbFrameRevoke(camera, &stream.frames[0]));
    stopStream();
    CHECK_INT(1, arrivalCount());
}

static void revoking_a_queued_frame_is_refused_or_takes_it_away(void) {
    prepareStream(2);
    startStream();
    // Open: which of both.
    const VmbError_t result = VmbFrameRevoke(camera, &stream.frames[0]);
    CHECK_EITHER(VmbErrorInvalidCall, VmbErrorSuccess, result);
    takeImage();
    CHECK(stream.arrivals[0].frame == &stream.frames[result == VmbErrorSuccess ? 1 : 0]);
    stopStream();
}

static void a_short_buffer_is_too_small_and_not_overrun(void) {
    useSoftwareTrigger();
    VmbFrame_t* frame = makeFrame();
    const VmbUint32_t half = frame->bufferSize / 2;
    const VmbUint32_t whole = frame->bufferSize;
    unsigned char* bytes = frame->buffer;
    memset(bytes, 0x5A, whole);
    frame->bufferSize = half;
    SUCCEEDS(VmbFrameAnnounce(camera, frame, sizeof *frame));
    startStream();
    takeImage();
    stopStream();
    CHECK_INT(VmbFrameStatusTooSmall, frame->receiveStatus);
    bool overrun = false;
    for (VmbUint32_t i = half; i < whole; ++i) overrun |= bytes[i] != 0x5A;
    CHECK(!overrun);
}

const Test kFrameTests[] = {
    TEST(NEEDS_CAMERA, frames_are_announced_and_revoked),
    TEST(NEEDS_CAMERA, announced_frames_are_counted),
    TEST(NEEDS_CAMERA, a_frame_must_be_announced_properly),
    TEST(NEEDS_CAMERA, a_frame_must_be_revoked_properly),
    TEST(NEEDS_CAMERA, the_library_allocates_missing_buffers),
    TEST(NEEDS_CAMERA, a_missing_frame_is_not_queued),
    TEST(NEEDS_CAMERA, queueing_without_announcing_does_no_harm),
    TEST(NEEDS_CAMERA, queueing_before_capture_starts_does_no_harm),
    TEST(NEEDS_CAMERA, waiting_for_a_frame_runs_out),
    TEST(NEEDS_CAMERA, a_frame_without_callback_is_waited_for),
    TEST(NEEDS_CAMERA, queued_frames_are_flushed_without_callback),
    TEST(NEEDS_CAMERA, revoking_a_queued_frame_is_refused_or_takes_it_away),
    TEST(NEEDS_CAMERA, a_short_buffer_is_too_small_and_not_overrun),
    END_OF_TESTS,
};
