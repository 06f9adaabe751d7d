// Memory and registers of a camera.
#include <cstring>

#include "simulator_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::SimulatorTest;

constexpr VmbUint64_t kPlain = 0x8000;
constexpr VmbUint64_t kEnd = 0x10000;

class CameraMemory : public SimulatorTest {
  protected:
    std::string text(VmbUint64_t address, VmbUint32_t size) const {
        std::string bytes(size, '?');
        EXPECT_EQ(VmbMemoryRead(camera, address, size, bytes.data(), nullptr), VmbErrorSuccess);
        return bytes.c_str();
    }
    VmbUint64_t registerAt(VmbUint64_t address) const {
        VmbUint64_t value = 0;
        EXPECT_EQ(VmbRegistersRead(camera, 1, &address, &value, nullptr), VmbErrorSuccess);
        return value;
    }
    VmbHandle_t camera = open();
    VmbUint32_t done = 99;
};

TEST_F(CameraMemory, BeginsWithTheBootstrapRegisters) {
    EXPECT_EQ(text(0x0048, 32), "Allied Vision Technologies");
    EXPECT_EQ(text(0x0068, 32), "Manta_G-033C");
    EXPECT_EQ(text(0x00D8, 16), "50-0503300001");
    EXPECT_EQ(registerAt(0x0008), 0x000Fu);
    EXPECT_EQ(registerAt(0x000C), 0x31A10001u);
    EXPECT_EQ(registerAt(0x0024), 0xA9FE0A01u);
    EXPECT_EQ(registerAt(0x0034), 0xFFFF0000u);
}

TEST_F(CameraMemory, KeepsWhatIsWritten) {
    EXPECT_EQ(VmbMemoryWrite(camera, kPlain + 1, 5, "hello", &done), VmbErrorSuccess);
    EXPECT_EQ(done, 5u);
    char bytes[7] = "......";
    done = 0;
    EXPECT_EQ(VmbMemoryRead(camera, kPlain + 1, 5, bytes, &done), VmbErrorSuccess);
    EXPECT_EQ(done, 5u);
    EXPECT_STREQ(bytes, "hello.");
    VmbCameraClose(camera);
    camera = open();
    EXPECT_EQ(text(kPlain + 1, 6), "hello");
}

TEST_F(CameraMemory, HasRegistersWithTheHighestByteFirst) {
    const VmbUint64_t addresses[] = {kPlain + 4, kPlain};
    const VmbUint64_t values[] = {0x41424344, 0x1'0000'0045};
    EXPECT_EQ(VmbRegistersWrite(camera, 2, addresses, values, &done), VmbErrorSuccess);
    EXPECT_EQ(done, 2u);
    EXPECT_EQ(text(kPlain + 4, 5), "ABCD");
    VmbUint64_t read[2] = {};
    EXPECT_EQ(VmbRegistersRead(camera, 2, addresses, read, &done), VmbErrorSuccess);
    EXPECT_EQ(read[0], 0x41424344u);
    EXPECT_EQ(read[1], 0x45u);
}

TEST_F(CameraMemory, ATransferBeyondTheEndIsPartial) {
    char bytes[8] = {};
    EXPECT_EQ(VmbMemoryWrite(camera, kEnd - 3, 8, "abcdefgh", &done), VmbErrorIncomplete);
    EXPECT_EQ(done, 3u);
    EXPECT_EQ(VmbMemoryRead(camera, kEnd - 3, 8, bytes, &done), VmbErrorIncomplete);
    EXPECT_EQ(done, 3u);
    EXPECT_STREQ(bytes, "abc");
    EXPECT_EQ(VmbMemoryRead(camera, kEnd, 4, bytes, &done), VmbErrorIncomplete);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(VmbMemoryRead(camera, UINT64_MAX, 4, bytes, nullptr), VmbErrorIncomplete);
    EXPECT_STREQ(bytes, "abc");
}

TEST_F(CameraMemory, RegistersStopAtTheFirstThatIsNotThere) {
    const VmbUint64_t addresses[] = {kPlain, kEnd, kPlain + 4};
    const VmbUint64_t values[] = {1, 2, 3};
    EXPECT_EQ(VmbRegistersWrite(camera, 3, addresses, values, &done), VmbErrorIncomplete);
    EXPECT_EQ(done, 1u);
    EXPECT_EQ(registerAt(kPlain), 1u);
    EXPECT_EQ(registerAt(kPlain + 4), 0u);
    VmbUint64_t read[3] = {77, 77, 77};
    EXPECT_EQ(VmbRegistersRead(camera, 3, addresses, read, &done), VmbErrorIncomplete);
    EXPECT_EQ(done, 1u);
    EXPECT_THAT(read, ::testing::ElementsAre(1, 77, 77));
}

TEST_F(CameraMemory, RegistersHaveAddressesThatAreMultiplesOfFour) {
    const VmbUint64_t addresses[] = {kPlain, kPlain + 2};
    const VmbUint64_t values[] = {1, 2};
    VmbUint64_t read[2] = {77, 77};
    EXPECT_EQ(VmbRegistersWrite(camera, 2, addresses, values, &done), VmbErrorBadParameter);
    EXPECT_EQ(VmbRegistersRead(camera, 2, addresses, read, &done), VmbErrorBadParameter);
    EXPECT_EQ(done, 99u);
    EXPECT_THAT(read, ::testing::ElementsAre(77, 77));
    EXPECT_EQ(registerAt(kPlain), 0u);
}

TEST_F(CameraMemory, BootstrapRegistersCannotBeChanged) {
    const VmbUint64_t addresses[] = {kPlain, 0x0008};
    const VmbUint64_t values[] = {1, 2};
    EXPECT_EQ(VmbMemoryWrite(camera, 0x0048, 1, "X", &done), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbMemoryWrite(camera, 0x09FF, 2, "XY", &done), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbRegistersWrite(camera, 2, addresses, values, &done), VmbErrorInvalidAccess);
    EXPECT_EQ(done, 99u);
    EXPECT_EQ(text(0x0048, 6), "Allied");
    EXPECT_EQ(registerAt(kPlain), 0u);
    EXPECT_EQ(VmbMemoryWrite(camera, 0x0A00, 1, "X", &done), VmbErrorSuccess);
}

TEST_F(CameraMemory, CannotBeChangedThroughACameraThatIsOpenForReading) {
    VmbCameraClose(camera);
    ASSERT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeRead, &camera), VmbErrorSuccess);
    const VmbUint64_t address = kPlain + 1;
    const VmbUint64_t value = 1;
    EXPECT_EQ(VmbMemoryWrite(camera, kPlain, 1, "X", &done), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbRegistersWrite(camera, 1, &address, &value, &done), VmbErrorInvalidAccess);
    EXPECT_EQ(done, 99u);
    EXPECT_EQ(text(0x0068, 5), "Manta");
}

TEST_F(CameraMemory, ATransferOfNothingIsRefused) {
    const VmbUint64_t address = kPlain;
    VmbUint64_t value = 1;
    char byte = 'x';
    EXPECT_EQ(VmbMemoryRead(camera, kPlain, 0, &byte, &done), VmbErrorBadParameter);
    EXPECT_EQ(VmbMemoryWrite(camera, kPlain, 0, &byte, &done), VmbErrorBadParameter);
    EXPECT_EQ(VmbRegistersRead(camera, 0, &address, &value, &done), VmbErrorBadParameter);
    EXPECT_EQ(VmbRegistersWrite(camera, 0, &address, &value, &done), VmbErrorBadParameter);
    EXPECT_EQ(done, 99u);
}

TEST_F(CameraMemory, IsGoneWithTheCamera) {
    char byte = 'x';
    VmbMemoryWrite(camera, kPlain, 1, "X", nullptr);
    VmbSimUnplugCamera(kColourCamera);
    EXPECT_EQ(VmbMemoryRead(camera, kPlain, 1, &byte, &done), VmbErrorBadHandle);
    EXPECT_EQ(byte, 'x');
    VmbSimPlugCamera(kColourCamera);
    camera = open();
    EXPECT_EQ(text(kPlain, 1), std::string());
}

}  // namespace
