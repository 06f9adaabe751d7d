/// The camera access layer as everything above it sees it: handles, records, callbacks, errors and the
/// abstract camera API. Nothing of the vendor's library shows through.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zelt_gige_api {

/// An open camera, or the camera library itself.
using CameraHandle = std::uint64_t;

/// The library's own object, which carries the system-wide features.
inline constexpr CameraHandle kSystemHandle = 1;

/// Failure of the camera library, or of this layer (code 0).
class CameraApiError : public std::runtime_error {
  public:
    explicit CameraApiError(const std::string& message, std::int32_t code = 0)
        : std::runtime_error(message), errorCode(code) {}

    const std::int32_t errorCode;  ///< the vendor library's code
};

/// The library refused a feature access or a command, for whatever reason.
class UnsupportedFeature : public CameraApiError {
  public:
    UnsupportedFeature(const std::string& feature, std::int32_t code);
};

/// The camera told a value that the feature cannot have.
class UnusableValue : public CameraApiError {
  public:
    UnusableValue(const std::string& feature, const std::string& value);
};

/// Text of a vendor error code. Deliberately partial: codes outside the table read "Error code <code>".
std::string errorText(std::int32_t code);

/// The number in a camera id of the form "DEV_" and hexadecimal digits; 0 for another form.
std::uint64_t deviceIdOf(const std::string& cameraId);

/// Numbering of this layer, not the vendor's.
enum class FeatureType : unsigned { None = 0, Bool, Int, Float, String, Enum, Command, Other };

struct IntRange {
    std::int64_t min = 0;
    std::int64_t max = 0;
    std::int64_t increment = 1;
    bool valid = false;  ///< when false the other fields mean nothing
};

struct FloatRange {
    double min = 0.0;
    double max = 0.0;
    double increment = 0.0;  ///< always NaN, the layer asks for none
    bool valid = false;      ///< when false the other fields mean nothing
};

struct CameraInfo {
    std::string cameraId;  ///< what openCamera takes
    std::string modelName;
    std::string vendor;
    std::string serialNumber;
    std::uint64_t deviceId = 0;  ///< deviceIdOf the camera id
    std::uint32_t reserved = 0;
};

struct FeatureInfo {
    std::string name;
    std::string description;
    FeatureType type = FeatureType::Other;
    std::uint32_t reserved = 0;
};

/// A received image. The memory belongs to the access layer and is valid during the callback only.
struct CameraFrame {
    std::uint64_t timestamp = 0;  ///< camera clock ticks, "GevTimestampTickFrequency" per second
    std::uint64_t frameid = 0;
    std::uint32_t width = 0;  ///< pixels, as the three that follow
    std::uint32_t height = 0;
    std::uint32_t offsetX = 0;
    std::uint32_t offsetY = 0;
    std::uint64_t reserved = 0;
    const void* buffer = nullptr;
    std::uint64_t imageSize = 0;  ///< valid bytes
};

/// [discovery] Told of cameras that come and go.
class IfDiscoveryCallback {
  public:
    virtual ~IfDiscoveryCallback() = default;
    virtual void onCameraAdded(const std::string& cameraId) = 0;
    virtual void onCameraRemoved(const std::string& cameraId) = 0;
};

/// Told of one camera's acquisition. Calls may overlap each other and host calls.
class IfCameraCallback {
  public:
    virtual ~IfCameraCallback() = default;
    /// [event] Camera ticks and frame id that the camera sent with its event.
    virtual void onAcquisitionStarted(CameraHandle handle, std::uint64_t timestamp,
                                      std::uint64_t frameid) = 0;
    /// [event]
    virtual void onAcquisitionEnded(CameraHandle handle, std::uint64_t timestamp, std::uint64_t frameid) = 0;
    /// [frame] One complete frame; calls of one camera never overlap.
    virtual void onFrameReceived(CameraHandle handle, const CameraFrame& frame) = 0;
};

/// Access to cameras. [any thread] unless said otherwise. Operations on features throw UnsupportedFeature
/// when the library refuses; all others throw CameraApiError with the text of the library's code. None may
/// be called under a lock that a callback needs where it says "waits".
class CameraApi {
  public:
    virtual ~CameraApi() = default;

    /// Starts the library; true when it runs. Never throws, the reason of a failure is in the log.
    virtual bool startup() = 0;
    /// Stops the library if started; waits for callbacks.
    virtual void shutdown() = 0;
    virtual std::string getVersion() = 0;
    virtual bool isGigeTransportLayerPresent() = 0;
    /// Sets the one discovery callback (not owned) and switches automatic discovery on.
    virtual void registerDiscoveryCallback(IfDiscoveryCallback* callback) = 0;
    /// Switches discovery off; waits until no discovery callback runs.
    virtual void unregisterDiscoveryCallback() = 0;
    /// Sets the callback (not owned) of an open camera; there can be only one.
    virtual void registerCameraCallback(CameraHandle handle, IfCameraCallback* callback) = 0;
    /// Removes it, if any; waits until no event callback of the camera runs.
    virtual void unregisterCameraCallback(CameraHandle handle) = 0;
    virtual std::vector<CameraInfo> listCameras() = 0;
    virtual CameraHandle openCamera(const std::string& cameraId) = 0;
    /// Closes a camera and frees its frame memory; waits for callbacks.
    virtual void closeCamera(CameraHandle handle) = 0;
    /// Readies a camera for streaming with that many buffers and its acquisition events. On failure no
    /// buffer is left behind, but the event handlers stay until endCapture.
    virtual void startCapture(CameraHandle handle, unsigned frameCount) = 0;
    /// Ends streaming and frees the buffers; waits for callbacks. Never throws.
    virtual void endCapture(CameraHandle handle) = 0;
    virtual void runCommand(CameraHandle handle, const char* name) = 0;
    virtual std::vector<FeatureInfo> listFeatures(CameraHandle handle) = 0;
    /// FeatureType::None when it cannot be had; never throws.
    virtual FeatureType getFeatureType(CameraHandle handle, const char* name) = 0;
    virtual std::string getEnumFeature(CameraHandle handle, const char* name) = 0;
    virtual void setEnumFeature(CameraHandle handle, const char* name, const std::string& entry) = 0;
    /// Entries in the library's order, empty when they cannot be had; never throws.
    virtual std::vector<std::string> getEnumFeatureRange(CameraHandle handle, const char* name) = 0;
    virtual double getFloatFeature(CameraHandle handle, const char* name) = 0;
    virtual void setFloatFeature(CameraHandle handle, const char* name, double value) = 0;
    virtual FloatRange getFloatFeatureRange(CameraHandle handle, const char* name) = 0;
    virtual std::int64_t getIntFeature(CameraHandle handle, const char* name) = 0;
    virtual void setIntFeature(CameraHandle handle, const char* name, std::int64_t value) = 0;
    virtual IntRange getIntFeatureRange(CameraHandle handle, const char* name) = 0;
    virtual bool getBoolFeature(CameraHandle handle, const char* name) = 0;
    virtual void setBoolFeature(CameraHandle handle, const char* name, bool value) = 0;
    virtual std::string getStringFeature(CameraHandle handle, const char* name) = 0;
    /// What listCameras gives now, for who asks again and again: never null, and as long as the library lists
    /// the same, the same object. Another object may hold the same cameras, too.
    virtual std::shared_ptr<const std::vector<CameraInfo>> currentCameras();

    void acquisitionStart(CameraHandle handle) { runCommand(handle, "AcquisitionStart"); }
    void acquisitionStop(CameraHandle handle) { runCommand(handle, "AcquisitionStop"); }
    std::string getDeviceModelName(CameraHandle handle) {
        return getStringFeature(handle, "DeviceModelName");
    }
    std::int64_t getWidth(CameraHandle handle) { return getIntFeature(handle, "Width"); }
    std::int64_t getHeight(CameraHandle handle) { return getIntFeature(handle, "Height"); }
    std::int64_t getOffsetX(CameraHandle handle) { return getIntFeature(handle, "OffsetX"); }
    std::int64_t getOffsetY(CameraHandle handle) { return getIntFeature(handle, "OffsetY"); }
    /// Bytes of one frame.
    std::int64_t getPayloadSize(CameraHandle handle) { return getIntFeature(handle, "PayloadSize"); }
    void setWidth(CameraHandle handle, std::int64_t value) { setIntFeature(handle, "Width", value); }
    void setHeight(CameraHandle handle, std::int64_t value) { setIntFeature(handle, "Height", value); }
    void setOffsetX(CameraHandle handle, std::int64_t value) { setIntFeature(handle, "OffsetX", value); }
    void setOffsetY(CameraHandle handle, std::int64_t value) { setIntFeature(handle, "OffsetY", value); }
    void setAcquisitionMode(CameraHandle handle, const std::string& entry) {
        setEnumFeature(handle, "AcquisitionMode", entry);
    }
    void setPixelFormat(CameraHandle handle, const std::string& entry) {
        setEnumFeature(handle, "PixelFormat", entry);
    }
    /// Sets a value and returns the one that the camera really took.
    std::int64_t setIntFeatureChecked(CameraHandle handle, const char* name, std::int64_t value) {
        setIntFeature(handle, name, value);
        return getIntFeature(handle, name);
    }
};

}  // namespace zelt_gige_api
