/// Chunk mode, and the ancillary data that comes with it.

#include "bench.h"
#include "calls.h"
#include "groups.h"
#include "stream.h"

enum { TRAILER_SIZE = 48, CHUNK_ID = 1000 };

static void takeChunkedImages(unsigned count) {
    useSoftwareTrigger();
    putBool("ChunkModeActive", true);
    for (unsigned i = 0; i < count; ++i) SUCCEEDS(VmbFrameAnnounce(camera, makeFrame(), sizeof(VmbFrame_t)));
    startStream();
    takeImages(count);
}

static void chunk_mode_enlarges_the_payload(void) {
    putBool("ChunkModeActive", false);
    CHECK_INT(0, intOf("NonImagePayloadSize"));
    CHECK_INT(intOf("ImageSize"), intOf("PayloadSize"));
    SUCCEEDS(VmbFeatureBoolSet(camera, "ChunkModeActive", true));
    CHECK(intOf("NonImagePayloadSize") > 0);
    CHECK_INT(intOf("ImageSize") + intOf("NonImagePayloadSize") + 8, intOf("PayloadSize"));
}

static void a_frame_with_chunks_has_ancillary_data(void) {
    takeChunkedImages(1);
    const VmbFrame_t* frame = &stream.arrivals[0].content;
    CHECK_INT(VmbFrameStatusComplete, frame->receiveStatus);
    CHECK(frame->ancillarySize > 0);
    CHECK_INT(intOf("ImageSize"), frame->imageSize);
    stopStream();
}

/// Open: the byte order of the trailer is not told, so either is tried.
static VmbUint32_t numberAt(const unsigned char* bytes, bool bigEndian) {
    VmbUint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | bytes[bigEndian ? i : 3 - i];
    return value;
}

static bool holds(const unsigned char* bytes, VmbUint32_t wanted) {
    return numberAt(bytes, true) == wanted || numberAt(bytes, false) == wanted;
}

static void the_trailer_tells_count_and_exposure(void) {
    takeChunkedImages(2);
    const size_t payload = (size_t)intOf("PayloadSize");
    const VmbUint32_t exposure = (VmbUint32_t)(floatOf("ExposureTimeAbs") + 0.5);
    stopStream();
    for (unsigned i = 0; i < 2; ++i) {
        const unsigned char* trailer = (const unsigned char*)stream.buffers[i] + payload - TRAILER_SIZE;
        CHECK(holds(trailer, i + 1));
        CHECK(holds(trailer + 8, exposure));
        CHECK(holds(trailer + 40, CHUNK_ID));
    }
}

static void ancillary_data_opens_and_closes(void) {
    VmbHandle_t handle = NULL;
    takeChunkedImages(1);
    if (SUCCEEDS(VmbAncillaryDataOpen(&stream.frames[0], &handle))) {
        CHECK(handle != NULL && handle != gVimbaHandle && handle != camera);
        CHECK_CODE(VmbErrorBadHandle, VmbCameraClose(handle));
        CHECK_CODE(VmbErrorBadHandle, VmbInterfaceClose(handle));
        SUCCEEDS(VmbAncillaryDataClose(handle));
        CHECK_CODE(VmbErrorBadHandle, VmbAncillaryDataClose(handle));
    }
    stopStream();
}

static void readChunkFeature(VmbHandle_t handle, const VmbFeatureInfo_t* info) {
    VmbInt64_t integer = 0;
    double real = 0;
    VmbBool_t readable = false;
    CHECK(info->featureFlags & VmbFeatureFlagsRead);
    SUCCEEDS(VmbFeatureAccessQuery(handle, info->name, &readable, NULL));
    CHECK(readable);
    if (info->featureDataType == VmbFeatureDataInt) {
        SUCCEEDS(VmbFeatureIntGet(handle, info->name, &integer));
    } else if (info->featureDataType == VmbFeatureDataFloat) {
        SUCCEEDS(VmbFeatureFloatGet(handle, info->name, &real));
    }
}

static void chunk_features_are_read_from_ancillary_data(void) {
    VmbHandle_t handle = NULL;
    VmbInt64_t value = 0;
    takeChunkedImages(1);
    if (SUCCEEDS(VmbAncillaryDataOpen(&stream.frames[0], &handle))) {
        forEachFeature(handle, readChunkFeature);
        CHECK_CODE(VmbErrorNotFound, VmbFeatureIntGet(handle, "Nonsense", &value));
        SUCCEEDS(VmbAncillaryDataClose(handle));
        CHECK_CODE(VmbErrorBadHandle, VmbFeatureIntGet(handle, "Nonsense", &value));
    }
    stopStream();
}

static void without_chunks_there_is_no_ancillary_data(void) {
    VmbHandle_t handle = NULL;
    putBool("ChunkModeActive", false);
    prepareStream(1);
    startStream();
    takeImage();
    CHECK_CODE(VmbErrorBadHandle, VmbAncillaryDataOpen(&stream.frames[0], &handle));
    stopStream();
}

static void ancillary_data_must_be_opened_properly(void) {
    VmbHandle_t handle = NULL;
    CHECK_CODE(VmbErrorBadParameter, VmbAncillaryDataOpen(NULL, &handle));
    takeChunkedImages(1);
    CHECK_CODE(VmbErrorBadParameter, VmbAncillaryDataOpen(&stream.frames[0], NULL));
    stopStream();
}

const Test kChunkTests[] = {
    TEST(NEEDS_CAMERA, chunk_mode_enlarges_the_payload),
    TEST(NEEDS_CAMERA, a_frame_with_chunks_has_ancillary_data),
    TEST(NEEDS_CAMERA, the_trailer_tells_count_and_exposure),
    TEST(NEEDS_CAMERA, ancillary_data_opens_and_closes),
    TEST(NEEDS_CAMERA, chunk_features_are_read_from_ancillary_data),
    TEST(NEEDS_CAMERA, without_chunks_there_is_no_ancillary_data),
    TEST(NEEDS_CAMERA, ancillary_data_must_be_opened_properly),
    END_OF_TESTS,
};
