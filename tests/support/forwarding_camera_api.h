/// A camera API that passes every call on to the real one and knows which cameras are open, so that a test
/// can ask an open camera what it holds.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zelt_gige_camera_api.h"

namespace test_support {

class ForwardingCameraApi : public zelt_gige_api::CameraApi {
  public:
    using Handle = zelt_gige_api::CameraHandle;
    using Text = std::string;

    explicit ForwardingCameraApi(std::shared_ptr<CameraApi> real) : m_real(std::move(real)) {}

    /// Handle of an open camera, 0 when it is closed.
    Handle handleOf(const Text& cameraId) const {
        const auto entry = m_open.find(cameraId);
        return entry != m_open.end() ? entry->second : 0;
    }

    Handle openCamera(const Text& id) override { return m_open[id] = m_real->openCamera(id); }
    void closeCamera(Handle handle) override {
        std::erase_if(m_open, [handle](const auto& entry) { return entry.second == handle; });
        m_real->closeCamera(handle);
    }

    bool startup() override { return m_real->startup(); }
    void shutdown() override { m_real->shutdown(); }
    Text getVersion() override { return m_real->getVersion(); }
    bool isGigeTransportLayerPresent() override { return m_real->isGigeTransportLayerPresent(); }
    void registerDiscoveryCallback(zelt_gige_api::IfDiscoveryCallback* callback) override {
        m_real->registerDiscoveryCallback(callback);
    }
    void unregisterDiscoveryCallback() override { m_real->unregisterDiscoveryCallback(); }
    void registerCameraCallback(Handle handle, zelt_gige_api::IfCameraCallback* callback) override {
        m_real->registerCameraCallback(handle, callback);
    }
    void unregisterCameraCallback(Handle handle) override { m_real->unregisterCameraCallback(handle); }
    std::vector<zelt_gige_api::CameraInfo> listCameras() override { return m_real->listCameras(); }
    void startCapture(Handle handle, unsigned frames) override { m_real->startCapture(handle, frames); }
    void endCapture(Handle handle) override { m_real->endCapture(handle); }
    void runCommand(Handle handle, const char* name) override { m_real->runCommand(handle, name); }
    std::vector<zelt_gige_api::FeatureInfo> listFeatures(Handle handle) override {
        return m_real->listFeatures(handle);
    }
    zelt_gige_api::FeatureType getFeatureType(Handle handle, const char* name) override {
        return m_real->getFeatureType(handle, name);
    }
    Text getEnumFeature(Handle handle, const char* name) override {
        return m_real->getEnumFeature(handle, name);
    }
    void setEnumFeature(Handle handle, const char* name, const Text& entry) override {
        m_real->setEnumFeature(handle, name, entry);
    }
    std::vector<Text> getEnumFeatureRange(Handle handle, const char* name) override {
        return m_real->getEnumFeatureRange(handle, name);
    }
    double getFloatFeature(Handle handle, const char* name) override {
        return m_real->getFloatFeature(handle, name);
    }
    void setFloatFeature(Handle handle, const char* name, double value) override {
        m_real->setFloatFeature(handle, name, value);
    }
    zelt_gige_api::FloatRange getFloatFeatureRange(Handle handle, const char* name) override {
        return m_real->getFloatFeatureRange(handle, name);
    }
    std::int64_t getIntFeature(Handle handle, const char* name) override {
        return m_real->getIntFeature(handle, name);
    }
    void setIntFeature(Handle handle, const char* name, std::int64_t value) override {
        m_real->setIntFeature(handle, name, value);
    }
    zelt_gige_api::IntRange getIntFeatureRange(Handle handle, const char* name) override {
        return m_real->getIntFeatureRange(handle, name);
    }
    bool getBoolFeature(Handle handle, const char* name) override {
        return m_real->getBoolFeature(handle, name);
    }
    void setBoolFeature(Handle handle, const char* name, bool value) override {
        m_real->setBoolFeature(handle, name, value);
    }
    Text getStringFeature(Handle handle, const char* name) override {
        return m_real->getStringFeature(handle, name);
    }

  private:
    const std::shared_ptr<CameraApi> m_real;
    std::map<Text, Handle> m_open;  ///< used on the host's thread only
};

}  // namespace test_support
