/// A camera made of a table: features that a test sets, refusals that it orders, and every call as text.
#pragma once

#include <array>
#include <charconv>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "zelt_gige_camera_api.h"

namespace test_support {

/// The shortest text that reads as this number.
inline std::string shortest(double value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

struct FakeFeature {
    zelt_gige_api::FeatureType type = zelt_gige_api::FeatureType::None;
    double number = 0.0;
    double min = 0.0;
    double max = 0.0;
    bool hasRange = false;
    std::string text = {};                  ///< a string's value, or the current entry
    std::vector<std::string> entries = {};  ///< of an enumeration
    /// What the camera makes of a number that is set.
    std::function<double(double)> rounding = [](double value) { return value; };
};

/// "BalanceRatioAbs" is two features, told apart by the current entry of "BalanceRatioSelector": it is named
/// with that entry in brackets, in the table and in the calls. A feature that is not in the table is one that
/// the camera does not have.
class FakeCameraApi : public zelt_gige_api::CameraApi {
  public:
    using Handle = zelt_gige_api::CameraHandle;
    using Type = zelt_gige_api::FeatureType;

    std::map<std::string, FakeFeature> features;
    std::vector<std::string> calls;

    void number(const std::string& name, Type type, double value) { features[name] = {type, value}; }
    void number(const std::string& name, Type type, double value, double min, double max) {
        features[name] = {type, value, min, max, /*hasRange=*/true};
    }
    void text(const std::string& name, Type type, const std::string& value,
              const std::vector<std::string>& entries = {}) {
        FakeFeature& feature = features[name] = {};
        feature.type = type;
        feature.text = value;
        feature.entries = entries;
    }

    /// The call that reads so, with or without its value, is refused as an unsupported feature; the `nth`
    /// such call from now on, and all that follow it.
    void refuse(const std::string& call, unsigned nth = 1) { m_refusals.push_back({call, nth, false}); }
    /// The same with an error that says nothing about the feature: the camera is gone.
    void lose(const std::string& call, unsigned nth = 1) { m_refusals.push_back({call, nth, true}); }
    void forgive() { m_refusals.clear(); }

    std::vector<zelt_gige_api::FeatureInfo> listFeatures(Handle) override {
        record("list", "features");
        std::vector<zelt_gige_api::FeatureInfo> list;
        for (const auto& [name, feature] : features) list.push_back({name, {}, feature.type});
        return list;
    }
    Type getFeatureType(Handle, const char* name) override {
        calls.push_back(std::string("type ") + name);
        const auto found = features.find(resolved(name));
        return found != features.end() ? found->second.type : Type::None;
    }
    std::string getEnumFeature(Handle, const char* name) override { return read("getEnum", name).text; }
    void setEnumFeature(Handle, const char* name, const std::string& entry) override {
        written("setEnum", name, entry).text = entry;
    }
    std::vector<std::string> getEnumFeatureRange(Handle, const char* name) override {
        calls.push_back(std::string("entries ") + name);
        return features[name].entries;
    }
    double getFloatFeature(Handle, const char* name) override { return read("getFloat", name).number; }
    void setFloatFeature(Handle, const char* name, double value) override {
        FakeFeature& feature = written("setFloat", name, shortest(value));
        feature.number = feature.rounding(value);
    }
    zelt_gige_api::FloatRange getFloatFeatureRange(Handle, const char* name) override {
        const FakeFeature feature = rangeOf("floatRange", name);
        return {feature.min, feature.max, 0.0, feature.hasRange};
    }
    std::int64_t getIntFeature(Handle, const char* name) override {
        return static_cast<std::int64_t>(read("getInt", name).number);
    }
    void setIntFeature(Handle, const char* name, std::int64_t value) override {
        FakeFeature& feature = written("setInt", name, std::to_string(value));
        feature.number = feature.rounding(static_cast<double>(value));
    }
    zelt_gige_api::IntRange getIntFeatureRange(Handle, const char* name) override {
        const FakeFeature feature = rangeOf("intRange", name);
        return {static_cast<std::int64_t>(feature.min), static_cast<std::int64_t>(feature.max), 1,
                feature.hasRange};
    }
    std::string getStringFeature(Handle, const char* name) override { return read("getString", name).text; }

    // What nothing that works on features has to call.
    bool startup() override { return unexpected<bool>(); }
    void shutdown() override { unexpected<bool>(); }
    std::string getVersion() override { return unexpected<std::string>(); }
    bool isGigeTransportLayerPresent() override { return unexpected<bool>(); }
    void registerDiscoveryCallback(zelt_gige_api::IfDiscoveryCallback*) override { unexpected<bool>(); }
    void unregisterDiscoveryCallback() override { unexpected<bool>(); }
    void registerCameraCallback(Handle, zelt_gige_api::IfCameraCallback*) override { unexpected<bool>(); }
    void unregisterCameraCallback(Handle) override { unexpected<bool>(); }
    std::vector<zelt_gige_api::CameraInfo> listCameras() override {
        return unexpected<std::vector<zelt_gige_api::CameraInfo>>();
    }
    Handle openCamera(const std::string&) override { return unexpected<Handle>(); }
    void closeCamera(Handle) override { unexpected<bool>(); }
    void startCapture(Handle, unsigned) override { unexpected<bool>(); }
    void endCapture(Handle) override { unexpected<bool>(); }
    void runCommand(Handle, const char*) override { unexpected<bool>(); }
    bool getBoolFeature(Handle, const char*) override { return unexpected<bool>(); }
    void setBoolFeature(Handle, const char*, bool) override { unexpected<bool>(); }

  private:
    struct Refusal {
        std::string call;
        unsigned callsLeft;  ///< the last of them and all that follow are refused
        bool cameraIsLost;
    };

    template <class T>
    static T unexpected() {
        ADD_FAILURE() << "a call that has nothing to do with features";
        return {};
    }
    static zelt_gige_api::UnsupportedFeature unsupported(const std::string& key) {
        return {key.substr(0, key.find('[')), -1};
    }
    std::string resolved(const std::string& name) {
        if (name != "BalanceRatioAbs") return name;
        return name + "[" + features["BalanceRatioSelector"].text + "]";
    }
    void record(const std::string& kind, const std::string& name, const std::string& value = {}) {
        const std::string call = kind + " " + name;
        calls.push_back(value.empty() ? call : call + " " + value);
        for (Refusal& refusal : m_refusals) {
            if (refusal.call != call && refusal.call != calls.back()) continue;
            if (refusal.callsLeft > 1) {
                --refusal.callsLeft;
            } else if (refusal.cameraIsLost) {
                throw zelt_gige_api::CameraApiError("The camera is gone");
            } else {
                throw unsupported(name);
            }
        }
    }
    FakeFeature& written(const std::string& kind, const char* name, const std::string& value) {
        const std::string key = resolved(name);
        record(kind, key, value);
        const auto found = features.find(key);
        if (found == features.end() || found->second.type == Type::None) {
            throw unsupported(key);
        }
        return found->second;
    }
    const FakeFeature& read(const std::string& kind, const char* name) { return written(kind, name, {}); }
    FakeFeature rangeOf(const std::string& kind, const char* name) {
        calls.push_back(kind + " " + resolved(name));
        return features[resolved(name)];
    }

    std::vector<Refusal> m_refusals;
};

}  // namespace test_support
