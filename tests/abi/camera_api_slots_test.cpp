// The camera access layer and the time-stamp generators, called by slot number.
#include <gtest/gtest.h>

#include "mirror.h"
#include "zelt_gige_camera_api.h"
#include "zelt_gige_clock_sync_base.h"

namespace {

using slot_check::answer;
using slot_check::answered;
using slot_check::answerIf;
using slot_check::entryOf;
using slot_check::Mirror;
using slot_check::MirrorOf;
using slot_check::Operations;
using slot_check::recorded;
using zelt_gige_api::CameraFrame;
using zelt_gige_api::CameraHandle;
using zelt_gige_api::CameraInfo;
using zelt_gige_api::FeatureInfo;
using zelt_gige_api::FeatureType;
using zelt_gige_api::FloatRange;
using zelt_gige_api::IfCameraCallback;
using zelt_gige_api::IfDiscoveryCallback;
using zelt_gige_api::IntRange;
using Texts = std::vector<std::string>;

constexpr CameraHandle kHandle = 0xfedcba9876543210u;
const char* const kName = "FeatureName";
const std::string kCameraId = "DEV_000F31000001 and a little longer";
const CameraFrame kFrame;

class RecordingApi : public slot_check::EndOf<zelt_gige_api::CameraApi> {
  public:
    virtual bool startup() { return answer("startup", true); }
    virtual void shutdown() { answered("shutdown"); }
    virtual std::string getVersion() { return answer("getVersion", std::string("Vimba API 1.2.3")); }
    virtual bool isGigeTransportLayerPresent() { return answer("isGigeTransportLayerPresent", true); }
    virtual void registerDiscoveryCallback(IfDiscoveryCallback* callback) {
        answerIf("registerDiscoveryCallback", callback == nullptr);
    }
    virtual void unregisterDiscoveryCallback() { answered("unregisterDiscoveryCallback"); }
    virtual void registerCameraCallback(CameraHandle handle, IfCameraCallback* callback) {
        answerIf("registerCameraCallback", handle == kHandle && callback == nullptr);
    }
    virtual void unregisterCameraCallback(CameraHandle handle) {
        answerIf("unregisterCameraCallback", handle == kHandle);
    }
    virtual std::vector<CameraInfo> listCameras() {
        return answer("listCameras", std::vector<CameraInfo>(9));
    }
    virtual CameraHandle openCamera(const std::string& cameraId) {
        return answer("openCamera", cameraId == kCameraId ? kHandle : 0u);
    }
    virtual void closeCamera(CameraHandle handle) { answerIf("closeCamera", handle == kHandle); }
    virtual void startCapture(CameraHandle handle, unsigned frameCount) {
        answerIf("startCapture", handle == kHandle && frameCount == 12);
    }
    virtual void endCapture(CameraHandle handle) { answerIf("endCapture", handle == kHandle); }
    virtual void runCommand(CameraHandle handle, const char* name) {
        answerIf("runCommand", arrived(handle, name));
    }
    virtual std::vector<FeatureInfo> listFeatures(CameraHandle handle) {
        return answer("listFeatures", std::vector<FeatureInfo>(handle == kHandle ? 15 : 0));
    }
    virtual FeatureType getFeatureType(CameraHandle handle, const char* name) {
        return answer("getFeatureType", arrived(handle, name) ? FeatureType::Command : FeatureType::None);
    }
    virtual std::string getEnumFeature(CameraHandle handle, const char* name) {
        return answer("getEnumFeature", std::string(arrived(handle, name) ? "entry" : ""));
    }
    virtual void setEnumFeature(CameraHandle handle, const char* name, const std::string& entry) {
        answerIf("setEnumFeature", arrived(handle, name) && entry == "entry");
    }
    virtual Texts getEnumFeatureRange(CameraHandle handle, const char* name) {
        return answer("getEnumFeatureRange", Texts(arrived(handle, name) ? 19 : 0));
    }
    virtual double getFloatFeature(CameraHandle handle, const char* name) {
        return answer("getFloatFeature", arrived(handle, name) ? 20.5 : 0.0);
    }
    virtual void setFloatFeature(CameraHandle handle, const char* name, double value) {
        answerIf("setFloatFeature", arrived(handle, name) && value == 21.5);
    }
    virtual FloatRange getFloatFeatureRange(CameraHandle handle, const char* name) {
        return answer("getFloatFeatureRange", FloatRange{22.0, 22.5, 0.25, arrived(handle, name)});
    }
    virtual std::int64_t getIntFeature(CameraHandle handle, const char* name) {
        return answer("getIntFeature", arrived(handle, name) ? -23 : 0);
    }
    virtual void setIntFeature(CameraHandle handle, const char* name, std::int64_t value) {
        answerIf("setIntFeature", arrived(handle, name) && value == -24);
    }
    virtual IntRange getIntFeatureRange(CameraHandle handle, const char* name) {
        return answer("getIntFeatureRange", IntRange{-25, 25, 5, arrived(handle, name)});
    }
    virtual bool getBoolFeature(CameraHandle handle, const char* name) {
        return answer("getBoolFeature", arrived(handle, name));
    }
    virtual void setBoolFeature(CameraHandle handle, const char* name, bool value) {
        answerIf("setBoolFeature", arrived(handle, name) && value);
    }
    virtual std::string getStringFeature(CameraHandle handle, const char* name) {
        return answer("getStringFeature", std::string(arrived(handle, name) ? "text" : ""));
    }
    virtual std::shared_ptr<const std::vector<CameraInfo>> currentCameras() {
        return answer("currentCameras", std::make_shared<const std::vector<CameraInfo>>(29));
    }

    static Operations operations() {
        using Self = RecordingApi;
        return {{"startup", entryOf(&Self::startup)},
                {"shutdown", entryOf(&Self::shutdown)},
                {"getVersion", entryOf(&Self::getVersion)},
                {"isGigeTransportLayerPresent", entryOf(&Self::isGigeTransportLayerPresent)},
                {"registerDiscoveryCallback", entryOf(&Self::registerDiscoveryCallback)},
                {"unregisterDiscoveryCallback", entryOf(&Self::unregisterDiscoveryCallback)},
                {"registerCameraCallback", entryOf(&Self::registerCameraCallback)},
                {"unregisterCameraCallback", entryOf(&Self::unregisterCameraCallback)},
                {"listCameras", entryOf(&Self::listCameras)},
                {"openCamera", entryOf(&Self::openCamera)},
                {"closeCamera", entryOf(&Self::closeCamera)},
                {"startCapture", entryOf(&Self::startCapture)},
                {"endCapture", entryOf(&Self::endCapture)},
                {"runCommand", entryOf(&Self::runCommand)},
                {"listFeatures", entryOf(&Self::listFeatures)},
                {"getFeatureType", entryOf(&Self::getFeatureType)},
                {"getEnumFeature", entryOf(&Self::getEnumFeature)},
                {"setEnumFeature", entryOf(&Self::setEnumFeature)},
                {"getEnumFeatureRange", entryOf(&Self::getEnumFeatureRange)},
                {"getFloatFeature", entryOf(&Self::getFloatFeature)},
                {"setFloatFeature", entryOf(&Self::setFloatFeature)},
                {"getFloatFeatureRange", entryOf(&Self::getFloatFeatureRange)},
                {"getIntFeature", entryOf(&Self::getIntFeature)},
                {"setIntFeature", entryOf(&Self::setIntFeature)},
                {"getIntFeatureRange", entryOf(&Self::getIntFeatureRange)},
                {"getBoolFeature", entryOf(&Self::getBoolFeature)},
                {"setBoolFeature", entryOf(&Self::setBoolFeature)},
                {"getStringFeature", entryOf(&Self::getStringFeature)},
                {"currentCameras", entryOf(&Self::currentCameras)}};
    }

  private:
    static bool arrived(CameraHandle handle, const char* name) { return handle == kHandle && name == kName; }
};

template <class Result>
Result ofFeature(Mirror& mirror, std::size_t number) {
    return mirror.slot<Result(CameraHandle, const char*)>(number)(kHandle, kName);
}

template <class Value>
void setFeature(Mirror& mirror, std::size_t number, Value value) {
    mirror.slot<void(CameraHandle, const char*, Value)>(number)(kHandle, kName, value);
}

void callLibrary(Mirror& mirror) {
    mirror.destroys(0);
    EXPECT_TRUE(mirror.slot<bool()>(1)());
    mirror.slot<void()>(2)();
    EXPECT_EQ(mirror.slot<std::string()>(3)(), "Vimba API 1.2.3");
    EXPECT_TRUE(mirror.slot<bool()>(4)());
    mirror.slot<void(IfDiscoveryCallback*)>(5)(nullptr);
    mirror.slot<void()>(6)();
    mirror.slot<void(CameraHandle, IfCameraCallback*)>(7)(kHandle, nullptr);
    mirror.slot<void(CameraHandle)>(8)(kHandle);
    EXPECT_EQ(mirror.slot<std::vector<CameraInfo>()>(9)().size(), 9u);
    EXPECT_EQ(mirror.slot<CameraHandle(const std::string&)>(10)(kCameraId), kHandle);
    mirror.slot<void(CameraHandle)>(11)(kHandle);
    mirror.slot<void(CameraHandle, unsigned)>(12)(kHandle, 12);
    mirror.slot<void(CameraHandle)>(13)(kHandle);
}

void callFeatures(Mirror& mirror) {
    ofFeature<void>(mirror, 14);
    EXPECT_EQ(mirror.slot<std::vector<FeatureInfo>(CameraHandle)>(15)(kHandle).size(), 15u);
    EXPECT_EQ(ofFeature<FeatureType>(mirror, 16), FeatureType::Command);
    EXPECT_EQ(ofFeature<std::string>(mirror, 17), "entry");
    setFeature<const std::string&>(mirror, 18, "entry");
    EXPECT_EQ(ofFeature<Texts>(mirror, 19).size(), 19u);
    EXPECT_EQ(ofFeature<double>(mirror, 20), 20.5);
    setFeature<double>(mirror, 21, 21.5);
    const auto floats = ofFeature<FloatRange>(mirror, 22);
    EXPECT_TRUE(floats.min == 22.0 && floats.max == 22.5 && floats.increment == 0.25 && floats.valid);
    EXPECT_EQ(ofFeature<std::int64_t>(mirror, 23), -23);
    setFeature<std::int64_t>(mirror, 24, -24);
    const auto integers = ofFeature<IntRange>(mirror, 25);
    EXPECT_TRUE(integers.min == -25 && integers.max == 25 && integers.increment == 5 && integers.valid);
    EXPECT_TRUE(ofFeature<bool>(mirror, 26));
    setFeature<bool>(mirror, 27, true);
    EXPECT_EQ(ofFeature<std::string>(mirror, 28), "text");
    using Cameras = std::shared_ptr<const std::vector<CameraInfo>>;
    EXPECT_EQ(mirror.slot<Cameras()>(29)()->size(), 29u);
}

const MirrorOf cameraApi("zelt_gige_api::CameraApi", recorded<RecordingApi>, [](Mirror& mirror) {
    callLibrary(mirror);
    callFeatures(mirror);
});

class RecordingDiscovery : public slot_check::EndOf<IfDiscoveryCallback> {
  public:
    virtual void onCameraAdded(const std::string& cameraId) {
        answered("onCameraAdded");
        EXPECT_EQ(cameraId, "added");
    }
    virtual void onCameraRemoved(const std::string& cameraId) {
        answered("onCameraRemoved");
        EXPECT_EQ(cameraId, "removed");
    }

    static Operations operations() {
        return {{"onCameraAdded", entryOf(&RecordingDiscovery::onCameraAdded)},
                {"onCameraRemoved", entryOf(&RecordingDiscovery::onCameraRemoved)}};
    }
};

const MirrorOf discovery("zelt_gige_api::IfDiscoveryCallback", recorded<RecordingDiscovery>,
                         [](Mirror& mirror) {
                             mirror.destroys(0);
                             mirror.slot<void(const std::string&)>(1)("added");
                             mirror.slot<void(const std::string&)>(2)("removed");
                         });

class RecordingCamera : public slot_check::EndOf<IfCameraCallback> {
  public:
    virtual void onAcquisitionStarted(CameraHandle handle, std::uint64_t timestamp, std::uint64_t frameid) {
        answered("onAcquisitionStarted");
        EXPECT_TRUE(handle == kHandle && timestamp == 11 && frameid == 12);
    }
    virtual void onAcquisitionEnded(CameraHandle handle, std::uint64_t timestamp, std::uint64_t frameid) {
        answered("onAcquisitionEnded");
        EXPECT_TRUE(handle == kHandle && timestamp == 21 && frameid == 22);
    }
    virtual void onFrameReceived(CameraHandle handle, const CameraFrame& frame) {
        answered("onFrameReceived");
        EXPECT_TRUE(handle == kHandle && &frame == &kFrame);
    }

    static Operations operations() {
        return {{"onAcquisitionStarted", entryOf(&RecordingCamera::onAcquisitionStarted)},
                {"onAcquisitionEnded", entryOf(&RecordingCamera::onAcquisitionEnded)},
                {"onFrameReceived", entryOf(&RecordingCamera::onFrameReceived)}};
    }
};

const MirrorOf camera("zelt_gige_api::IfCameraCallback", recorded<RecordingCamera>, [](Mirror& mirror) {
    mirror.destroys(0);
    mirror.slot<void(CameraHandle, std::uint64_t, std::uint64_t)>(1)(kHandle, 11, 12);
    mirror.slot<void(CameraHandle, std::uint64_t, std::uint64_t)>(2)(kHandle, 21, 22);
    mirror.slot<void(CameraHandle, const CameraFrame&)>(3)(kHandle, kFrame);
});

class RecordingSync : public slot_check::EndOf<zelt_gige_camera::ClockSyncBase> {
  public:
    using EndOf::EndOf;

    virtual double getRate() const {
        answered("getRate");
        return 1.5;
    }
    virtual std::int64_t computeTimestamp(const CameraFrame& frame, std::int64_t cameraTime,
                                          std::int64_t hostTime) {
        answered("computeTimestamp");
        return &frame == &kFrame ? cameraTime - hostTime : 0;
    }
    virtual std::int64_t timestampFromSync(const CameraFrame& frame) {
        answered("timestampFromSync");
        return &frame == &kFrame ? -3 : 0;
    }
    virtual bool needsSyncPoint(const CameraFrame& frame) const {
        answered("needsSyncPoint");
        return &frame == &kFrame;
    }
    virtual void addSyncPoint(std::int64_t cameraTime, std::int64_t hostTime, double quality) {
        answered("addSyncPoint");
        EXPECT_TRUE(cameraTime == -51 && hostTime == -52 && quality == 0.5);
    }

    static Operations operations() {
        return {{"getRate", entryOf(&RecordingSync::getRate)},
                {"computeTimestamp", entryOf(&RecordingSync::computeTimestamp)},
                {"timestampFromSync", entryOf(&RecordingSync::timestampFromSync)},
                {"needsSyncPoint", entryOf(&RecordingSync::needsSyncPoint)},
                {"addSyncPoint", entryOf(&RecordingSync::addSyncPoint)}};
    }
};

const MirrorOf clockSync(
    "zelt_gige_camera::ClockSyncBase",
    [] { return recorded<RecordingSync>(zelt_gige_camera::Rational(1000), 1.0); },
    [](Mirror& mirror) {
        mirror.destroys(0);
        EXPECT_EQ(mirror.slot<double()>(1)(), 1.5);
        EXPECT_EQ(
            (mirror.slot<std::int64_t(const CameraFrame&, std::int64_t, std::int64_t)>(2)(kFrame, 7, 9)), -2);
        EXPECT_EQ(mirror.slot<std::int64_t(const CameraFrame&)>(3)(kFrame), -3);
        EXPECT_TRUE(mirror.slot<bool(const CameraFrame&)>(4)(kFrame));
        mirror.slot<void(std::int64_t, std::int64_t, double)>(5)(-51, -52, 0.5);
    });

}  // namespace
