/// A client's mistake that makes a call wait for good.
#pragma once

#include <functional>
#include <mutex>

#include "simulator_fixture.h"

namespace test_support {

/// The mistake: a lock that the frame callback needs is held across a call that waits for that callback.
inline void waitWithTheCallbacksLock(VmbHandle_t camera, const std::function<void()>& wait) {
    std::mutex mutex;
    Door inCallback;
    Stream stream(camera);
    std::unique_lock lock(mutex);
    stream.hook = [&](VmbFrame_t&) {
        inCallback.open();
        const std::lock_guard wanted(mutex);
    };
    stream.startCapture();
    VmbFeatureCommandRun(camera, "AcquisitionStart");
    inCallback.wait();
    wait();
}

}  // namespace test_support
