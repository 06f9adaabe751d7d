/// The vendor's library in bad hands. The program's own functions stand in the vendor's place; each asks the
/// simulator, unless a test says what it does instead.
#pragma once

#include <functional>

#include "test_system.h"
#include "vimba_c.h"

namespace test_support {

template <class Signature>
class VendorCall;

/// One function of the library.
template <class Result, class... Args>
class VendorCall<Result(Args...)> {
  public:
    explicit VendorCall(const char* name)
        : m_simulator(reinterpret_cast<Result (*)(Args...)>(loadedSymbol(libraryFileName("VimbaC"), name))) {}

    Result operator()(Args... args) const { return instead ? instead(args...) : m_simulator(args...); }
    /// What the simulator answers.
    Result honest(Args... args) const { return m_simulator(args...); }

    /// To be set while the library calls nobody back: before it is started, or while virtual time stands
    /// still.
    std::function<Result(Args...)> instead;

  private:
    Result (*m_simulator)(Args...);
};

/// The functions that a test can change; all others are the simulator's own.
struct HostileVendor {
    VendorCall<decltype(VmbCamerasList)> camerasList{"VmbCamerasList"};
    VendorCall<decltype(VmbCameraOpen)> cameraOpen{"VmbCameraOpen"};
    VendorCall<decltype(VmbFeaturesList)> featuresList{"VmbFeaturesList"};
    VendorCall<decltype(VmbFeatureInfoQuery)> featureInfoQuery{"VmbFeatureInfoQuery"};
    VendorCall<decltype(VmbFeatureIntGet)> intGet{"VmbFeatureIntGet"};
    VendorCall<decltype(VmbFeatureIntRangeQuery)> intRangeQuery{"VmbFeatureIntRangeQuery"};
    VendorCall<decltype(VmbFeatureFloatGet)> floatGet{"VmbFeatureFloatGet"};
    VendorCall<decltype(VmbFeatureFloatSet)> floatSet{"VmbFeatureFloatSet"};
    VendorCall<decltype(VmbFeatureFloatRangeQuery)> floatRangeQuery{"VmbFeatureFloatRangeQuery"};
    VendorCall<decltype(VmbFeatureEnumGet)> enumGet{"VmbFeatureEnumGet"};
    VendorCall<decltype(VmbFeatureEnumRangeQuery)> enumRangeQuery{"VmbFeatureEnumRangeQuery"};
    VendorCall<decltype(VmbFeatureStringGet)> stringGet{"VmbFeatureStringGet"};
    VendorCall<decltype(VmbFeatureCommandRun)> commandRun{"VmbFeatureCommandRun"};
    VendorCall<decltype(VmbFeatureInvalidationRegister)> invalidationRegister{
        "VmbFeatureInvalidationRegister"};
    VendorCall<decltype(VmbFrameAnnounce)> frameAnnounce{"VmbFrameAnnounce"};
    VendorCall<decltype(VmbCaptureFrameQueue)> captureFrameQueue{"VmbCaptureFrameQueue"};
    VendorCall<decltype(VmbCaptureEnd)> captureEnd{"VmbCaptureEnd"};
};

/// The one library of the process.
HostileVendor& hostileVendor();

/// Makes the library honest again at the end of a test.
class HonestAfterwards {
  public:
    HonestAfterwards() = default;
    ~HonestAfterwards();
    HonestAfterwards(const HonestAfterwards&) = delete;
    HonestAfterwards& operator=(const HonestAfterwards&) = delete;
};

}  // namespace test_support
