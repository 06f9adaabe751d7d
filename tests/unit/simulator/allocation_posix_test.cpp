// The road of a frame allocates nothing, so that clients can count their own allocations.
#include <cstdlib>
#include <new>

#include "simulator_fixture.h"

namespace {

std::atomic<bool> s_counting{false};
std::atomic<int> s_allocations{0};

void* allocate(std::size_t size) {
    if (s_counting.load(std::memory_order_relaxed)) ++s_allocations;
    if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}

}  // namespace

// The library takes these from the program, as any library does. Inlined, the compiler would see a
// deletion end in free and warn of it.
[[gnu::noinline]] void* operator new(std::size_t size) {
    return allocate(size);
}
[[gnu::noinline]] void* operator new[](std::size_t size) {
    return allocate(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete[](void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using test_support::run;
using test_support::StreamTest;

class Counting {
  public:
    Counting() {
        s_allocations = 0;
        s_counting = true;
    }
    ~Counting() { s_counting = false; }
    static int allocations() { return s_allocations; }
};

TEST_F(StreamTest, TheCountingSeesTheLibrarysAllocations) {
    const VmbHandle_t camera = open();
    const Counting counting;
    VmbUint32_t found = 0;
    VmbFeaturesList(camera, nullptr, 0, &found, 0);
    EXPECT_GT(Counting::allocations(), 0);
}

TEST_F(StreamTest, QueueingAllocatesNothing) {
    const VmbHandle_t camera = openFast();
    test_support::Stream stream(camera);
    stream.announceAll();
    const Counting counting;
    for (int round = 0; round < 10; ++round) {
        for (std::size_t i = 0; i < 5; ++i) stream.queue(i);
        VmbCaptureQueueFlush(camera);
    }
    EXPECT_EQ(Counting::allocations(), 0);
}

class FrameAllocations : public StreamTest {
  protected:
    /// While ten frames come from a camera that is set up.
    static int duringFrames(VmbHandle_t camera);
};

int FrameAllocations::duringFrames(VmbHandle_t camera) {
    static std::atomic<int> s_frames;
    static std::atomic<int> s_counted;
    s_frames = 0;
    s_counted = -1;
    const auto onFrame = [](const VmbHandle_t handle, VmbFrame_t* frame) {
        const int frames = ++s_frames;
        if (frames == 3) {
            s_allocations = 0;
            s_counting = true;
        }
        if (frames == 13) {
            s_counted = s_allocations.load();
            s_counting = false;
        }
        VmbCaptureFrameQueue(
            handle, frame,
            frame->context[1] != nullptr ? reinterpret_cast<VmbFrameCallback>(frame->context[1]) : nullptr);
    };
    test_support::Stream stream(camera);
    const VmbFrameCallback callback = onFrame;
    stream.announceAll();
    VmbCaptureStart(camera);
    for (VmbFrame_t& frame : stream.frames) {
        frame.context[1] = reinterpret_cast<void*>(callback);
        VmbCaptureFrameQueue(camera, &frame, callback);
    }
    run(camera, "AcquisitionStart");
    EXPECT_EQ(VmbSimWaitForFrames(test_support::kColourCamera, 14, test_support::kPatienceMs),
              VmbErrorSuccess);
    stream.endCapture();
    return s_counted;
}

TEST_F(FrameAllocations, ThereAreNoneFromExposureToQueueing) {
    EXPECT_EQ(duringFrames(openFast()), 0);
}

TEST_F(FrameAllocations, ThereAreNoneWherePacketsGetLostEither) {
    VmbSimLink link{};
    link.bytesPerSecond = 100'000'000;
    link.bufferBytes = 100'000;
    link.lossPpm = 100'000;
    link.burstPpm = 1'000;
    link.burstPackets = 5;
    link.reorderPpm = 100'000;
    link.reorderPackets = 1'000;
    link.latePpm = 500'000;
    link.lateNs = 1'000'000;
    ASSERT_EQ(VmbSimSetLink("SimulatedNetwork0", &link), VmbErrorSuccess);
    const VmbHandle_t camera = openFast();
    test_support::setInt(camera, "GevSCPSPacketSize", 1500);
    EXPECT_EQ(duringFrames(camera), 0);
}

}  // namespace
