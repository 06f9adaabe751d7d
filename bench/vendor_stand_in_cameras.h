/// What the sources of the stand-in share.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "vendor_stand_in.h"

namespace bench::vendor {

/// A feature of any type; what its type does not use stays empty.
struct Feature {
    const char* name = "";
    VmbFeatureData_t type = VmbFeatureDataUnknown;
    double value = 0.0;
    double min = 0.0;
    double max = 0.0;
    std::string text;
    std::vector<const char*> entries;
};

struct alignas(kApart) Camera {
    static constexpr unsigned kMostBuffers = 8;

    std::mutex queueMutex;
    std::array<Buffer, kMostBuffers> queue;
    unsigned first = 0;
    unsigned queued = 0;
    std::atomic<std::int64_t> registerNs{0};
    std::atomic<std::int64_t> longestRegisterNs{0};
    std::vector<Feature> features;
};

/// Counts the call; every function of the vendor's begins with it.
void countCall();
/// The camera of a handle, null for the library's own handle and for what is none.
Camera* cameraOf(VmbHandle_t handle);
VmbHandle_t handleOf(unsigned camera);
/// The feature of a camera or of the library; null when there is none of that name.
Feature* findFeature(VmbHandle_t handle, const char* name);
/// What a camera is delivered with.
std::vector<Feature> factorySettings();

}  // namespace bench::vendor
