/// What the camera does between start and stop: modes, locks, rates, its clock and its events.
#include <math.h>
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "stream.h"
#include "waiting.h"
#include "watch.h"

/// All frames but the last have a callback; the last must stay empty, which is waited for.
static void acquireAndExpect(unsigned images) {
    prepareStream(images + 1);
    SUCCEEDS(VmbFeatureEnumSet(camera, "TriggerSource", "Freerun"));
    SUCCEEDS(VmbFeatureEnumSet(camera, "AcquisitionMode", images == 1 ? "SingleFrame" : "MultiFrame"));
    SUCCEEDS(VmbCaptureStart(camera));
    for (unsigned i = 0; i < images; ++i) {
        SUCCEEDS(VmbCaptureFrameQueue(camera, &stream.frames[i], recordArrival));
    }
    SUCCEEDS(VmbCaptureFrameQueue(camera, &stream.frames[images], NULL));
    runCommand("AcquisitionStart");
    CHECK(waitForCount(&stream.arrivalCount, images));
    CHECK_CODE(VmbErrorTimeout, VmbCaptureFrameWait(camera, &stream.frames[images], 500));
    stopStream();
    CHECK_INT(images, arrivalCount());
}

static void single_frame_mode_gives_one_image(void) {
    acquireAndExpect(1);
}

static void multi_frame_mode_gives_as_many_images_as_it_is_told(void) {
    putInt("AcquisitionFrameCount", 5);
    acquireAndExpect(5);
}

static void a_software_trigger_after_the_start_gives_its_image(void) {
    prepareStream(1);
    for (unsigned round = 1; round <= 20; ++round) {
        SUCCEEDS(VmbCaptureStart(camera));
        SUCCEEDS(VmbCaptureFrameQueue(camera, &stream.frames[0], recordArrival));
        runToEnd("AcquisitionStart");
        runCommand("TriggerSoftware");
        if (!CHECK(waitForCountWithin(&stream.arrivalCount, round, TRIGGER_MS))) break;
        runCommand("AcquisitionStop");
        SUCCEEDS(VmbCaptureEnd(camera));
    }
    stopStream();
}

static const char* const kLocked[] = {"Width", "Height", "PixelFormat", "ChunkModeActive",
                                      "GevSCPSPacketSize"};
static const char* const kOpen[] = {"ExposureTimeAbs", "Gain", "AcquisitionFrameRateAbs"};

static void checkWriteable(const char* name, bool wanted) {
    VmbBool_t writeable = !wanted;
    checkAbout(name);
    SUCCEEDS(VmbFeatureAccessQuery(camera, name, NULL, &writeable));
    CHECK_INT(wanted, writeable);
    checkAbout(NULL);
}

static void checkLocks(bool acquiring) {
    for (size_t i = 0; i < sizeof kLocked / sizeof *kLocked; ++i) checkWriteable(kLocked[i], !acquiring);
    for (size_t i = 0; i < sizeof kOpen / sizeof *kOpen; ++i) checkWriteable(kOpen[i], true);
}

static void the_format_is_locked_during_acquisition(void) {
    prepareStream(1);
    keep("Gain");
    const VmbInt64_t width = intOf("Width");
    const VmbInt64_t height = intOf("Height");
    const VmbInt64_t packet = intOf("GevSCPSPacketSize");
    checkLocks(false);
    startStream();
    checkLocks(true);
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureIntSet(camera, "Width", width));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureIntSet(camera, "Height", height));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureEnumSet(camera, "PixelFormat", enumOf("PixelFormat")));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureBoolSet(camera, "ChunkModeActive", false));
    CHECK_CODE(VmbErrorInvalidAccess, VmbFeatureIntSet(camera, "GevSCPSPacketSize", packet));
    SUCCEEDS(VmbFeatureFloatSet(camera, "ExposureTimeAbs", 3000));
    SUCCEEDS(VmbFeatureFloatSet(camera, "Gain", 1));
    stopStream();
    checkLocks(false);
    SUCCEEDS(VmbFeatureIntSet(camera, "Height", height));
}

static VmbInt64_t latchedTime(void) {
    runToEnd("GevTimestampControlLatch");
    return intOf("GevTimestampValue");
}

static void frames_carry_the_clock_of_the_camera(void) {
    prepareStream(2);
    startStream();
    const VmbInt64_t before = latchedTime();
    takeImage();
    const VmbInt64_t between = latchedTime();
    takeImage();
    const VmbInt64_t after = latchedTime();
    stopStream();
    const VmbInt64_t one = (VmbInt64_t)stream.arrivals[0].content.timestamp;
    const VmbInt64_t two = (VmbInt64_t)stream.arrivals[1].content.timestamp;
    CHECK(before < one && one < between);
    CHECK(between < two && two < after);
}

static void the_clock_of_the_camera_keeps_its_frequency(void) {
    const double frequency = (double)intOf("GevTimestampTickFrequency");
    const double hostBefore = secondsNow();
    const VmbInt64_t before = latchedTime();
    const double hostStart = secondsNow();
    keepOfSystem("GeVDiscoveryAllDuration");
    SUCCEEDS(VmbFeatureIntSet(gVimbaHandle, "GeVDiscoveryAllDuration", 500));
    discover();
    const double hostEnd = secondsNow();
    const VmbInt64_t after = latchedTime();
    const double hostAfter = secondsNow();
    const double seconds = (double)(after - before) / frequency;
    // The two readings of the camera fall within known spans of the host's clock.
    CHECK(seconds >= (hostEnd - hostStart) * 0.999);
    CHECK(seconds <= (hostAfter - hostBefore) * 1.001);
}

static void the_clock_of_the_camera_is_reset(void) {
    if (hasFeature("PtpMode") && strcmp(enumOf("PtpMode"), "Off") != 0) putEnum("PtpMode", "Off");
    runToEnd("GevTimestampControlReset");
    const double host = secondsNow();
    runToEnd("GevTimestampControlReset");
    const VmbInt64_t value = latchedTime();
    const double seconds = (double)value / (double)intOf("GevTimestampTickFrequency");
    CHECK(value >= 0);
    CHECK(seconds <= (secondsNow() - host) * 1.001);
}

static void checkRate(const char* triggerMode, const char* triggerSource) {
    enum { IMAGES = 6 };
    prepareStream(IMAGES);
    putInt("AcquisitionFrameCount", IMAGES);
    putFloat("AcquisitionFrameRateAbs", fmin(10, floatOf("AcquisitionFrameRateLimit") / 2));
    SUCCEEDS(VmbFeatureEnumSet(camera, "TriggerMode", triggerMode));
    SUCCEEDS(VmbFeatureEnumSet(camera, "TriggerSource", triggerSource));
    SUCCEEDS(VmbFeatureEnumSet(camera, "AcquisitionMode", "MultiFrame"));
    const double period = 1 / floatOf("AcquisitionFrameRateAbs");
    const double frequency = (double)intOf("GevTimestampTickFrequency");
    startStream();
    CHECK(waitForCount(&stream.arrivalCount, IMAGES));
    stopStream();
    for (int i = 1; i < IMAGES; ++i) {
        const VmbUint64_t step =
            stream.arrivals[i].content.timestamp - stream.arrivals[i - 1].content.timestamp;
        CHECK_NEAR(period, (double)step / frequency, 0.001 * period);
    }
}

static void a_fixed_rate_shows_in_the_time_stamps(void) {
    checkRate("On", "FixedRate");
}

static void without_trigger_the_camera_runs_at_its_rate(void) {
    checkRate("Off", "Software");
}

static bool automaticExposureIsOff(void) {
    const char* value = "";
    return VmbFeatureEnumGet(camera, "ExposureAuto", &value) != VmbErrorSuccess || !strcmp(value, "Off");
}

static void automatic_exposure_once_turns_itself_off(void) {
    prepareStream(4);
    SUCCEEDS(VmbFeatureEnumSet(camera, "TriggerSource", "Freerun"));
    SUCCEEDS(VmbFeatureEnumSet(camera, "ExposureAuto", "Once"));
    CHECK_TEXT("Once", enumOf("ExposureAuto"));
    stream.requeues = true;
    startStream();
    CHECK(pollUntil(automaticExposureIsOff));
    stopStream();
}

static void the_rate_limit_follows_the_bandwidth(void) {
    putBool("StreamFrameRateConstrain", true);
    keep("StreamBytesPerSecond");
    const double before = floatOf("AcquisitionFrameRateLimit");
    const double bandwidth = (double)intOf("StreamBytesPerSecond");
    const double payload = (double)intOf("PayloadSize");
    CHECK(before * payload <= bandwidth * 1.001);
    VmbInt64_t min = 0;
    SUCCEEDS(VmbFeatureIntRangeQuery(camera, "StreamBytesPerSecond", &min, NULL));
    SUCCEEDS(VmbFeatureIntSet(camera, "StreamBytesPerSecond", min));
    CHECK(floatOf("AcquisitionFrameRateLimit") < before);
    CHECK(floatOf("AcquisitionFrameRateLimit") * payload <= (double)min * 1.001);
}

static Watch stampWatch;
static Watch idWatch;

static void the_start_of_acquisition_is_an_event(void) {
    putEnum("EventSelector", "AcquisitionStart");
    putEnum("EventNotification", "On");
    prepareStream(2);
    watchFeature(&stampWatch, camera, "EventAcquisitionStartTimestamp");
    watchFeature(&idWatch, camera, "EventAcquisitionStartFrameID");
    const VmbInt64_t before = latchedTime();
    startStream();
    waitForCalls(&stampWatch, 1);
    waitForCalls(&idWatch, 1);
    const VmbInt64_t after = latchedTime();
    const VmbInt64_t stamp = intOf("EventAcquisitionStartTimestamp");
    const VmbInt64_t id = intOf("EventAcquisitionStartFrameID");
    CHECK(before < stamp && stamp < after);
    takeImages(2);
    CHECK_INT(1, callsOf(&stampWatch));
    stopStream();
    // Open: the event's frame is none or the first.
    CHECK(id == 0 || id == (VmbInt64_t)stream.arrivals[0].content.frameID);
    CHECK(stamp <= (VmbInt64_t)stream.arrivals[0].content.timestamp);
}

static void an_event_turned_off_does_not_come(void) {
    putEnum("EventSelector", "AcquisitionStart");
    putEnum("EventNotification", "Off");
    prepareStream(1);
    watchFeature(&stampWatch, camera, "EventAcquisitionStartTimestamp");
    startStream();
    takeImage();
    settleInvalidations();
    stopStream();
    CHECK_INT(0, callsOf(&stampWatch));
}

static void statistics_count_the_frames_of_an_acquisition(void) {
    prepareStream(3);
    startStream();
    takeImages(3);
    CHECK(reachesInt("StatFrameDelivered", 3, PATIENCE_MS));
    CHECK_INT(3, intOf("StatFrameDelivered"));
    CHECK_INT(0, intOf("StatFrameDropped"));
    CHECK(intOf("StatPacketReceived") >= 3);
    CHECK(floatOf("StatTimeElapsed") >= 0);
    stopStream();
}

const Test kAcquisitionTests[] = {
    TEST(NEEDS_CAMERA, single_frame_mode_gives_one_image),
    TEST(NEEDS_CAMERA, a_software_trigger_after_the_start_gives_its_image),
    TEST(NEEDS_CAMERA, multi_frame_mode_gives_as_many_images_as_it_is_told),
    TEST(NEEDS_CAMERA, the_format_is_locked_during_acquisition),
    TEST(NEEDS_CAMERA, frames_carry_the_clock_of_the_camera),
    TEST(NEEDS_CAMERA, the_clock_of_the_camera_keeps_its_frequency),
    TEST(NEEDS_CAMERA, the_clock_of_the_camera_is_reset),
    TEST(NEEDS_CAMERA, a_fixed_rate_shows_in_the_time_stamps),
    TEST(NEEDS_CAMERA, without_trigger_the_camera_runs_at_its_rate),
    TEST(NEEDS_CAMERA, automatic_exposure_once_turns_itself_off),
    TEST(NEEDS_CAMERA, the_rate_limit_follows_the_bandwidth),
    TEST(NEEDS_CAMERA, the_start_of_acquisition_is_an_event),
    TEST(NEEDS_CAMERA, an_event_turned_off_does_not_come),
    TEST(NEEDS_CAMERA, statistics_count_the_frames_of_an_acquisition),
    END_OF_TESTS,
};
