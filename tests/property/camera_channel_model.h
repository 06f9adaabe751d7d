/// What a camera channel must show after any call, worked out beside the product.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "camera_channel_rows.h"
#include "config_keys.h"
#include "forwarding_camera_api.h"
#include "zelt_gige_camera_channel.h"

namespace property_tests {

using test_support::ForwardingCameraApi;

using Frequency = std::optional<std::pair<std::int64_t, std::int64_t>>;

/// What the validation looks at.
struct ValidationFigures {
    bool used = true;
    bool aux = false;
    Frequency auxFrequency;
    double fixedRate = 0;       ///< per second
    int model = 0;              ///< 33, 32, or 0 while the camera was never open
    double width = 0;           ///< pixels
    double height = 0;          ///< pixels
    std::string format;         ///< as the host sees it
    double exposure = 0;        ///< microseconds
    bool continuous = false;    ///< automatic exposure
    double streamBytes = 0;     ///< per second, that the camera may send
    double othersRequired = 0;  ///< bytes per second of the other channels
};

/// Bytes per second that the channel needs.
double requiredBytes(const ValidationFigures& figures);
/// 0 valid, 1 a limit is exceeded, 2 no trigger frequency.
int validationCode(const ValidationFigures& figures);

/// One channel under watch: it may show other values than before only if the host set them or was told, what
/// the host chose and every camera can do must stay, and what is shown must be what the camera holds.
class WatchedChannel {
  public:
    WatchedChannel(std::shared_ptr<zelt_gige_camera::CameraChannel> channel, ForwardingCameraApi& api);
    ~WatchedChannel();

    const std::string& id() const { return channel->getCameraId(); }
    std::string shown(const std::string& key) const;
    double number(const std::string& key) const;
    bool isOpen() const { return m_api.handleOf(id()) != 0; }
    bool isConnected() const { return isOpen() && channel->isConnected(); }
    bool isAux() const { return shown(config_keys::kCameraTriggerMode) == kAux; }
    /// Whether the channel said that something could not be done since the command began.
    bool hasFailed() const;
    bool wasTold(const std::string& key) const { return told.count(key) != 0; }
    /// All but the others' bandwidth and the trigger frequency.
    ValidationFigures figures();

    /// A command begins.
    void begin();
    /// The host set the row's value of that index. `faulty`: a call of the vendor's library was made to fail
    /// meanwhile.
    void wasSet(const SettingRow& row, std::size_t index, bool accepted, bool faulty);
    /// The channel was prepared or opened.
    void wasPrepared(bool noFrequency, bool faulty);
    void trustNothing();

    /// What is wrong after a command, in words; empty for nothing. `silentRate`: the rate may have changed
    /// without notice.
    std::string difference(const Frequency& frequency, bool silentRate);

    const std::shared_ptr<zelt_gige_camera::CameraChannel> channel;
    std::set<std::string> told;  ///< keys that the host was told of since the command began
    std::vector<std::string> messages;
    /// Settings whose shown values need not be the camera's: set while it was closed, not yet prepared, or
    /// after a failure.
    std::set<std::string> uncertain;
    std::map<std::string, std::string> wanted;  ///< chosen by the host, and possible
    int expectedCode = 0;                       ///< of the last validation
    bool captureFailed = false;
    bool validationUnsure = false;  ///< the channel may know less of the camera than the model

  private:
    void lookAtCamera();
    std::string unexplainedChange(bool silentRate) const;
    std::string lostChoice() const;
    std::string otherThanTheCamera();
    void noteAutomaticFunctions();

    ForwardingCameraApi& m_api;
    std::map<std::string, std::string> m_before;
    std::map<std::string, std::string> m_own;  ///< what this command set
    bool m_was_opened = false;
    double m_stream_bytes = 0;
};

}  // namespace property_tests
