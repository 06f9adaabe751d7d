/// A measuring computer with two simulated cameras in virtual time, and a host that takes a plug-in through
/// its life, one phase after the other.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "counting_pages.h"
#include "plugin_fixture.h"
#include "zelt_gige_camera_plugin.h"

namespace faults {

/// What a host does. Each has vendor calls of its own.
enum class Phase {
    Create,      ///< the plug-in, by its creator
    Initialise,  ///< with the discovery of both cameras
    Enumerate,   ///< opens both
    Open,        ///< preparation of cameras that another program had when they were enumerated
    Configure,   ///< first preparation of cameras that are open
    Prepare,     ///< a second one, while capture runs
    Start,
    Stream,    ///< frames come, and the values of automatic functions are asked for
    Settings,  ///< every setting once, and what else changes them
    Stop,
    Close,  ///< of prepared cameras that are no longer listed
    Terminate,
    Destroy  ///< in the middle of an acquisition
};

inline constexpr std::array<Phase, 13> kPhases{
    Phase::Create,  Phase::Initialise, Phase::Enumerate, Phase::Open,     Phase::Configure,
    Phase::Prepare, Phase::Start,      Phase::Stream,    Phase::Settings, Phase::Stop,
    Phase::Close,   Phase::Terminate,  Phase::Destroy};

const char* nameOf(Phase phase);

inline constexpr std::array<const char*, 2> kCameras{test_support::kColourCamera,
                                                     test_support::kMonochromeCamera};

enum class Answer { Yes, No, Thrown };

struct Outcome {
    Answer answer = Answer::Yes;
    std::string thrown;  ///< the exception's text, its placeholders filled
};

/// Something that the host does; false and exceptions become the outcome.
template <typename Step>
Outcome attempt(Step&& step) {
    try {
        return {step() ? Answer::Yes : Answer::No, {}};
    } catch (const exception_manager::Exception& exception) {
        return {Answer::Thrown, exception_manager::fillPlaceholders(exception)};
    } catch (const std::exception& error) {
        return {Answer::Thrown, error.what()};
    }
}

/// Asks for the automatic values whenever it may.
class PassingHours final : public platform::WallClock {
  public:
    double now() noexcept override { return m_seconds += 3600; }

  private:
    double m_seconds = 0;
};

class World {
  public:
    World();
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    /// A computer just switched on, and everything that comes before the phase. Throws std::runtime_error
    /// when something of that fails.
    void bringTo(Phase phase);
    Outcome run(Phase phase);

    /// Another plug-in in place of this one, as the creator makes it.
    void create();
    void destroy();
    zelt::IfDAQPlugin& plugin() { return *m_plugin; }
    bool exists() const { return m_plugin != nullptr; }
    /// Gives the plug-in its clock and services and starts it; discovery then finds the cameras.
    bool initialise();
    /// The values that all recordings are made with, where a channel has others. False when one is refused.
    bool applySettings();
    /// Channel of a camera, ~0 for none.
    std::uint32_t channelOf(const char* camera) { return m_plugin->findChannelId(camera); }
    /// A channel's latest message; empty without a channel or a message.
    std::string messageOf(const char* camera);
    /// All settings of a camera as texts.
    std::map<std::string, std::string> settingsOf(const char* camera);
    zelt::IfSyncAuxService& aux();

    /// The host's.
    test_support::TestClock& clock() { return *m_clock; }

    static void advance(std::uint64_t ns);

    /// Blocks of counted memory for so many frames. A plug-in made by the creator takes the system's own.
    int pagesFor(unsigned frames) const { return m_counts_pages ? static_cast<int>(frames) : 0; }

    test_support::CountingPages pages;  ///< what frames are received in

  private:
    void arrange(Phase phase);
    bool start();
    bool stop();
    bool runSettings();
    bool set(const char* camera, const std::string& key, const std::string& value);
    bool changeSettings(const char* camera);

    test_support::Simulator m_simulator;
    zelt_gige_camera::CameraPluginCreator m_creator;
    PassingHours m_hours;
    std::shared_ptr<test_support::TestClock> m_clock = std::make_shared<test_support::TestClock>();
    bool m_counts_pages = false;
    zelt::IfDAQPlugin* m_plugin = nullptr;
    plugin_api::IfServiceFactory* m_services = nullptr;
};

}  // namespace faults
