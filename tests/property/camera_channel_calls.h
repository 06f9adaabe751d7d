/// Sequences of host calls on a plug-in with two simulated cameras in virtual time, what the channels show
/// compared with the cameras and with a model after each.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "assertion_capture.h"
#include "camera_channel_model.h"
#include "if_sync_aux_service.h"
#include "zelt_gige_camera_plugin.h"

namespace property_tests {

/// One call. The numbers choose, whatever they are, so that they can be made smaller one by one.
struct Command {
    enum What { Set, Action, Used, Aux, Prepare, Start, Advance, Process, Stop, Enumerate, Cable, Check };
    int what = Set;
    unsigned camera = 0;
    unsigned which = 0;  ///< the setting
    unsigned value = 0;
    unsigned fault = 0;  ///< a call of the vendor's library that fails meanwhile; 0 for none
};

void showValue(const Command& command, std::ostream& os);

class CameraChannelCalls {
  public:
    /// `faultAtOpen` as Command::fault, while the cameras are opened first.
    explicit CameraChannelCalls(unsigned faultAtOpen);
    ~CameraChannelCalls();

    /// Ends after the first call that leaves something wrong.
    void run(const std::vector<Command>& commands);
    /// What is wrong, in words; empty for nothing.
    const std::string& difference() const { return m_difference; }

  private:
    void call(const Command& command);
    void set(const Command& command);
    void act(const Command& command);
    void use(const Command& command);
    void setFrequency(unsigned value);
    void prepare(bool faulty);
    void start(bool faulty);
    void stop(bool faulty);
    void enumerate();
    void turnCable(unsigned camera);
    void check();

    WatchedChannel* find(unsigned camera);
    /// Follows the channels that came, and lets go of those that went. `faulty` as for wasSet.
    void watch(bool faulty);
    ValidationFigures figures(WatchedChannel& channel);
    void validated(WatchedChannel& channel);
    bool allConnected() const;
    void compare(const Command& command);
    void expect(bool holds, const std::string& what);

    const test_support::AssertionCapture m_assertions;
    std::shared_ptr<ForwardingCameraApi> m_api;
    std::unique_ptr<zelt_gige_camera::CameraPlugin> m_plugin;
    zelt::IfSyncAuxService* m_aux = nullptr;
    std::vector<std::unique_ptr<WatchedChannel>> m_channels;
    Frequency m_frequency;
    bool m_plugged[2] = {true, true};
    bool m_prepared = false;
    bool m_acquiring = false;
    bool m_used_later = false;  ///< a channel's switch was turned since it was prepared
    std::string m_difference;
};

}  // namespace property_tests
