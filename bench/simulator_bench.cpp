// How much of a core the simulator takes: sixteen cameras of 640 x 480 at 100 Hz in real time, and how many
// frames of one camera pass in virtual time. Fails when frames are missing, and on an idle machine when it
// takes half a core or more, or gives fewer than 100000 frames a second.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "vimba_simulator.h"

namespace {

struct Client {
    VmbHandle_t camera = nullptr;
    std::vector<std::vector<std::uint8_t>> memory;
    std::vector<VmbFrame_t> frames;
    std::uint64_t count = 0;
    std::uint64_t damaged = 0;
    std::uint64_t worstDelay = 0;  // of a callback, in nanoseconds behind its time
};

// Checking every picture would cost more than making it.
constexpr std::uint64_t kChecked = 100;

void onFrame(const VmbHandle_t camera, VmbFrame_t* frame) {
    auto& client = *static_cast<Client*>(frame->context[0]);
    const std::uint64_t now = VmbSimTime();
    if (++client.count % kChecked == 0) {
        VmbSimFrameStamp stamp;
        if (VmbSimReadStamp(frame->buffer, frame->imageSize, &stamp) != VmbErrorSuccess) {
            ++client.damaged;
        } else {
            client.worstDelay = std::max(client.worstDelay, now - stamp.exposureStartNs - stamp.wayNs);
        }
    }
    VmbCaptureFrameQueue(camera, frame, &onFrame);
}

void start(Client& client, const std::string& id, VmbInt64_t width, VmbInt64_t height) {
    VmbCameraOpen(id.c_str(), VmbAccessModeFull, &client.camera);
    VmbFeatureEnumSet(client.camera, "PixelFormat", "Mono8");
    VmbFeatureEnumSet(client.camera, "TriggerMode", "Off");
    VmbFeatureIntSet(client.camera, "Width", width);
    VmbFeatureIntSet(client.camera, "Height", height);
    VmbFeatureFloatSet(client.camera, "ExposureTimeAbs", 1000);
    VmbFeatureFloatSet(client.camera, "AcquisitionFrameRateAbs", 100);
    client.frames.resize(5);
    for (VmbFrame_t& frame : client.frames) {
        client.memory.emplace_back(static_cast<std::size_t>(width * height));
        frame.buffer = client.memory.back().data();
        frame.bufferSize = static_cast<VmbUint32_t>(client.memory.back().size());
        frame.context[0] = &client;
        VmbFrameAnnounce(client.camera, &frame, sizeof frame);
    }
    VmbCaptureStart(client.camera);
    for (VmbFrame_t& frame : client.frames) VmbCaptureFrameQueue(client.camera, &frame, &onFrame);
    VmbFeatureCommandRun(client.camera, "AcquisitionStart");
}

bool realTime() {
    constexpr std::uint64_t kSeconds = 10;
    const char* const last = "DEV_000F31B00016";
    VmbSimLoadScenario("sixteen-cameras");
    VmbStartup();
    std::vector<Client> clients(16);
    for (std::size_t i = 0; i < clients.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        start(clients[i], "DEV_000F31B000" + std::string(2 - number.size(), '0') + number, 640, 480);
    }
    VmbSimWaitForFrames(last, 10, 10'000);
    const std::clock_t before = std::clock();
    const std::uint64_t begin = VmbSimTime();
    VmbSimWaitForFrames(last, 10 + 100 * kSeconds, 60'000);
    const double cpu = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    const double seconds = static_cast<double>(VmbSimTime() - begin) / 1e9;
    VmbShutdown();
    std::uint64_t least = UINT64_MAX;
    std::uint64_t damaged = 0;
    std::uint64_t worstDelay = 0;
    for (const Client& client : clients) {
        least = std::min(least, client.count);
        damaged += client.damaged;
        worstDelay = std::max(worstDelay, client.worstDelay);
    }
    std::printf("real time: 16 cameras, 640 x 480, 100 Hz, %.1f s: %.2f of a core, worst delay %.3f ms\n",
                seconds, cpu / seconds, static_cast<double>(worstDelay) / 1e6);
    return least >= 99 * kSeconds && damaged == 0 && cpu / seconds < 0.5;
}

bool virtualTime() {
    constexpr std::uint64_t kSeconds = 86'400;
    VmbSimLoadScenario("two-cameras");
    VmbSimUseVirtualTime(true);
    VmbStartup();
    Client client;
    start(client, "DEV_000F31A10001", 64, 16);
    const auto begin = std::chrono::steady_clock::now();
    VmbSimAdvance(kSeconds * 1'000'000'000);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    VmbShutdown();
    VmbSimUseVirtualTime(false);
    std::printf("virtual time: a day of 64 x 16 at 100 Hz, %llu frames, in %.1f s: %.0f frames a second\n",
                static_cast<unsigned long long>(client.count), passed.count(),
                static_cast<double>(client.count) / passed.count());
    return client.count >= 100 * kSeconds && client.damaged == 0 &&
           static_cast<double>(client.count) / passed.count() >= 1e5;
}

}  // namespace

int main() {
    const bool real = realTime();
    const bool driven = virtualTime();
    if (!real || !driven) std::puts("FRAMES ARE MISSING, or a figure is worse than it should be");
    return real && driven ? 0 : 1;
}
