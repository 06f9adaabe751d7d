/// Calls on a plug-in and on what it hands out, in any order and with any arguments, over two simulated
/// cameras in virtual time that fail, vanish and come back. No model: what is watched is that nothing
/// crashes, hangs or leaves as an exception that no host can name, that no sink is called when it must not
/// be, and that the vendor's library is not misused.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "assertion_capture.h"
#include "config_item_variant.h"
#include "if_channel_messages.h"
#include "if_daq_plugin.h"
#include "if_service_factory.h"
#include "log_capture.h"
#include "zelt_gige_camera_plugin_creator.h"

namespace fuzz {

/// Longer than this in real time, a call hangs.
inline constexpr std::uint32_t kHangMs = 20'000;

/// Watches what it is given. Dead: the plug-in has promised not to call it any more.
class WatchfulSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void* data, std::uint64_t size) override;
    void begin() { m_last = INT64_MIN; }
    bool isDead = true;
    std::string wrong;

  private:
    std::int64_t m_last = INT64_MIN;
};

class PluginCalls {
  public:
    /// `scenario`: path of the cameras' file.
    PluginCalls(const std::string& scenario, const std::uint8_t* data, std::size_t size);
    ~PluginCalls();
    PluginCalls(const PluginCalls&) = delete;
    PluginCalls& operator=(const PluginCalls&) = delete;

    /// Makes the calls that the bytes say; what went wrong, empty for nothing.
    std::string run();

  private:
    using Channel = std::shared_ptr<channel_config::IfChannelConfig>;

    void begin();
    void call();
    void callPlugin();
    void callAcquisition();
    void callChannel();
    void callServices();
    void disturb();
    void makeOrDestroy();

    void destroy();
    void setSink();
    void set(channel_config::IfChannelConfig& channel);
    void listen(const Channel& channel);
    void read(channel_config::IfChannelConfig& channel);
    std::uint32_t anyChannel();
    std::string anyKey();
    config_items::ConfigItemVariant anyValue(const std::string& key);
    plugin_api::IfService* service(const char* id);
    const char* anyCamera();

    FuzzedDataProvider m_bytes;
    const test_support::AssertionCapture m_assertions;
    const test_support::LogCapture m_log{UniLogSeverityLevel::Detail};  ///< texts are formatted
    zelt_gige_camera::CameraPluginCreator m_creator;
    zelt::IfDAQPlugin* m_plugin = nullptr;
    std::vector<plugin_api::IfServiceFactory*> m_factories;
    std::vector<Channel> m_held;  ///< kept by the host beyond the plug-in
    WatchfulSink m_sinks[3];
    std::string m_wrong;
};

}  // namespace fuzz
