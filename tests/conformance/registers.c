/// Memory and registers. Open: no address is promised to be there or writeable. Used are some that the
/// protocol of GigE cameras itself needs; what is changed is put back.
#include <string.h>

#include "bench.h"
#include "calls.h"
#include "groups.h"

static const VmbUint64_t kVersion = 0;
static const VmbUint64_t kBeyondAllRegisters = 0xFFFFFFFFFFFFFFF0u;

/// The heartbeat time-out and the delay between packets of the first stream.
static const VmbUint64_t kHarmless[] = {0x0938, 0x0D08};

static VmbUint64_t writeableAddress(void) {
    for (size_t i = 0; i < sizeof kHarmless / sizeof *kHarmless; ++i) {
        char data[4];
        VmbUint32_t done = 0;
        if (VmbMemoryRead(camera, kHarmless[i], sizeof data, data, &done) != VmbErrorSuccess) continue;
        if (VmbMemoryWrite(camera, kHarmless[i], sizeof data, data, &done) == VmbErrorSuccess) {
            return kHarmless[i];
        }
    }
    return kHarmless[0];
}

static void memory_is_read_and_written(void) {
    const VmbUint64_t address = writeableAddress();
    char original[4] = {0};
    char changed[4] = {0};
    char again[4] = {0};
    VmbUint32_t done = 0;
    if (!SUCCEEDS(VmbMemoryRead(camera, address, sizeof original, original, &done))) return;
    CHECK_INT(sizeof original, done);
    memcpy(changed, original, sizeof changed);
    changed[3] = (char)(changed[3] ^ 1);
    done = 0;
    SUCCEEDS(VmbMemoryWrite(camera, address, sizeof changed, changed, &done));
    CHECK_INT(sizeof changed, done);
    SUCCEEDS(VmbMemoryRead(camera, address, sizeof again, again, &done));
    CHECK(memcmp(changed, again, sizeof changed) == 0);
    SUCCEEDS(VmbMemoryWrite(camera, address, sizeof original, original, &done));
}

static void registers_are_read_and_written(void) {
    const VmbUint64_t address = writeableAddress();
    VmbUint64_t original = 0;
    VmbUint64_t again = 0;
    VmbUint32_t done = 0;
    if (!SUCCEEDS(VmbRegistersRead(camera, 1, &address, &original, &done))) return;
    CHECK_INT(1, done);
    const VmbUint64_t changed = original ^ 1;
    done = 0;
    SUCCEEDS(VmbRegistersWrite(camera, 1, &address, &changed, &done));
    CHECK_INT(1, done);
    SUCCEEDS(VmbRegistersRead(camera, 1, &address, &again, &done));
    CHECK(again == changed);
    SUCCEEDS(VmbRegistersWrite(camera, 1, &address, &original, &done));
}

static void several_registers_are_read_at_once(void) {
    const VmbUint64_t addresses[] = {kVersion, kHarmless[0]};
    VmbUint64_t values[2] = {0, 0};
    VmbUint64_t single = 1;
    VmbUint32_t done = 0;
    SUCCEEDS(VmbRegistersRead(camera, 2, addresses, values, &done));
    CHECK_INT(2, done);
    for (int i = 0; i < 2; ++i) {
        SUCCEEDS(VmbRegistersRead(camera, 1, &addresses[i], &single, &done));
        CHECK(values[i] == single);
    }
}

static void a_partial_transfer_is_told_with_its_extent(void) {
    const VmbUint64_t addresses[] = {writeableAddress(), kBeyondAllRegisters};
    VmbUint64_t values[2] = {0, 0};
    VmbUint32_t done = 9;
    // Open: a partial transfer is incomplete or has more data.
    CHECK_EITHER(VmbErrorIncomplete, VmbErrorMoreData, VmbRegistersRead(camera, 2, addresses, values, &done));
    CHECK_INT(1, done);
    done = 9;
    CHECK_EITHER(VmbErrorIncomplete, VmbErrorMoreData,
                 VmbRegistersWrite(camera, 2, addresses, values, &done));
    CHECK_INT(1, done);
}

static void memory_that_is_not_there_is_not_read(void) {
    char data[4] = {0};
    VmbUint32_t done = 0;
    // Open: with which error.
    CHECK_FAILS(VmbMemoryRead(camera, kBeyondAllRegisters, sizeof data, data, &done));
    CHECK_FAILS(VmbMemoryWrite(camera, kBeyondAllRegisters, sizeof data, data, &done));
}

static void memory_needs_a_buffer_and_registers_need_arrays(void) {
    VmbUint64_t value = 0;
    VmbUint32_t done = 0;
    CHECK_CODE(VmbErrorBadParameter, VmbMemoryRead(camera, kVersion, 4, NULL, &done));
    CHECK_CODE(VmbErrorBadParameter, VmbMemoryWrite(camera, kVersion, 4, NULL, &done));
    CHECK_CODE(VmbErrorBadParameter, VmbRegistersRead(camera, 1, NULL, &value, &done));
    CHECK_CODE(VmbErrorBadParameter, VmbRegistersRead(camera, 1, &kVersion, NULL, &done));
    CHECK_CODE(VmbErrorBadParameter, VmbRegistersWrite(camera, 1, NULL, &value, &done));
    CHECK_CODE(VmbErrorBadParameter, VmbRegistersWrite(camera, 1, &kVersion, NULL, &done));
}

const Test kRegisterTests[] = {
    TEST(NEEDS_CAMERA, memory_is_read_and_written),
    TEST(NEEDS_CAMERA, registers_are_read_and_written),
    TEST(NEEDS_CAMERA, several_registers_are_read_at_once),
    TEST(NEEDS_CAMERA, a_partial_transfer_is_told_with_its_extent),
    TEST(NEEDS_CAMERA, memory_that_is_not_there_is_not_read),
    TEST(NEEDS_CAMERA, memory_needs_a_buffer_and_registers_need_arrays),
    END_OF_TESTS,
};
