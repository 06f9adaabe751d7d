// Every operation of the host's in every state of the plug-in, and what can still be done afterwards.
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <boost/uuid/uuid_io.hpp>

#include "plugin_fixture.h"
#include "zelt_gige_camera_api.h"

namespace {

using test_support::AssertionCapture;
using test_support::kColourCamera;
using test_support::kPatienceMs;
using test_support::PluginTest;
using test_support::RecordingSink;

enum class State { Created, WithServices, Initialized, Enumerated, Prepared, Acquiring, Stopped, Terminated };

constexpr State kStates[] = {State::Created,  State::WithServices, State::Initialized, State::Enumerated,
                             State::Prepared, State::Acquiring,    State::Stopped,     State::Terminated};

bool isInitialized(State state) {
    return state >= State::Initialized && state != State::Terminated;
}
bool hasChannels(State state) {
    return state >= State::Enumerated && state != State::Terminated;
}

const char* nameOf(State state) {
    constexpr const char* kNames[] = {"Created",  "WithServices", "Initialized", "Enumerated",
                                      "Prepared", "Acquiring",    "Stopped",     "Terminated"};
    return kNames[static_cast<int>(state)];
}

/// An operation as a text of what it answers, so that all can stand in one table.
struct Operation {
    const char* name;
    std::function<std::string(zelt::IfDAQPlugin&)> call;
    std::function<std::string(State)> answer;
};

std::string text(bool value) {
    return value ? "true" : "false";
}

/// The answer, or "throws".
template <class Call>
auto answering(Call call) {
    return [call](zelt::IfDAQPlugin& plugin) -> std::string {
        try {
            return call(plugin);
        } catch (const exception_manager::Exception&) {
            return "throws";
        } catch (const zelt_gige_api::CameraApiError&) {
            return "throws";
        }
    };
}

template <class Member>
auto yesOrNo(Member member) {
    return answering([member](zelt::IfDAQPlugin& plugin) { return text((plugin.*member)()); });
}

auto always(const char* answer) {
    return [answer](State) -> std::string { return answer; };
}

auto whenInitialized(const char* otherwise = "false") {
    return [otherwise](State state) -> std::string { return isInitialized(state) ? "true" : otherwise; };
}

std::string answerOfStart(State state) {
    if (!isInitialized(state)) return "false";
    if (state == State::Initialized || state == State::Prepared) return "true";
    // Cameras that are not prepared, or acquire already.
    return state == State::Acquiring ? "true" : "throws";
}

const std::vector<Operation>& operations() {
    using Plugin = zelt::IfDAQPlugin;
    static const std::vector<Operation> all{
        {"getDisplayName", [](Plugin& plugin) { return std::string(plugin.getDisplayName()); },
         always("GIGE Camera")},
        {"getPluginId", [](Plugin& plugin) { return boost::uuids::to_string(plugin.getPluginId()); },
         always("eeec3c46-9973-487d-ad18-36cd7dda58da")},
        {"getPluginTypeId", [](Plugin& plugin) { return boost::uuids::to_string(plugin.getPluginTypeId()); },
         always("d40250c7-33f6-4ece-9a88-bae8ee6d5fa5")},
        {"getServiceFactory",
         [](Plugin& plugin) {
             plugin_api::IfServiceFactory* const factory = plugin.getServiceFactory();
             if (factory != nullptr) factory->release();
             return text(factory != nullptr);
         },
         [](State state) { return text(state != State::Created); }},
        {"getInstanceIndex", [](Plugin& plugin) { return std::to_string(plugin.getInstanceIndex()); },
         always("0")},
        {"setInstanceIndex",
         [](Plugin& plugin) {
             plugin.setInstanceIndex(5);
             return std::to_string(plugin.getInstanceIndex());
         },
         always("5")},
        {"createServices", yesOrNo(&Plugin::createServices), always("true")},
        {"initialize", yesOrNo(&Plugin::initialize), always("true")},
        {"isSupported", yesOrNo(&Plugin::isSupported), always("true")},
        {"terminate",
         [](Plugin& plugin) {
             plugin.terminate();
             return std::to_string(plugin.getChannelIds().size());
         },
         always("0")},
        {"getPluginConfig",
         [](Plugin& plugin) { return std::to_string(plugin.getPluginConfig()->getKeys().size()); },
         always("2")},
        {"onHostEvent",
         [](Plugin& plugin) {
             plugin.onHostEvent(nullptr);
             return std::string();
         },
         always("")},
        {"enumerateDevices", answering([](Plugin& plugin) {
             plugin.enumerateDevices();
             return std::string("lists");
         }),
         // The camera library has been shut down.
         [](State state) { return state == State::Terminated ? "throws" : "lists"; }},
        {"setHostValue",
         [](Plugin& plugin) {
             plugin.setHostValue(7);
             return std::string();
         },
         always("")},
        {"isSupported2", yesOrNo(&Plugin::isSupported2), always("true")},
        {"setChannelSink",
         [](Plugin& plugin) {
             RecordingSink sink;
             plugin.setChannelSink(0, &sink);
             plugin.setChannelSink(77, &sink);
             plugin.clearChannelSinks();
             return std::string();
         },
         always("")},
        {"getChannelIds", [](Plugin& plugin) { return std::to_string(plugin.getChannelIds().size()); },
         [](State state) -> std::string { return hasChannels(state) ? "2" : "0"; }},
        {"findChannelId", [](Plugin& plugin) { return text(plugin.findChannelId(kColourCamera) == 0); },
         [](State state) { return text(hasChannels(state)); }},
        // A camera takes no settings while it acquires.
        {"prepareAcquisition", yesOrNo(&Plugin::prepareAcquisition),
         [](State state) { return text(state != State::Acquiring); }},
        {"isAcquiring", yesOrNo(&Plugin::isAcquiring),
         [](State state) { return text(state == State::Acquiring); }},
        {"isReadyForAcquisition", yesOrNo(&Plugin::isReadyForAcquisition), whenInitialized()},
        {"hasSystemTopology", yesOrNo(&Plugin::hasSystemTopology), always("false")},
        {"startAcquisition", yesOrNo(&Plugin::startAcquisition), answerOfStart},
        {"stopAcquisition", yesOrNo(&Plugin::stopAcquisition), whenInitialized()},
        {"onAcquisitionPrepared", yesOrNo(&Plugin::onAcquisitionPrepared), always("true")},
        {"onAcquisitionFinished", yesOrNo(&Plugin::onAcquisitionFinished), always("true")},
        {"processAcquisition", yesOrNo(&Plugin::processAcquisition), whenInitialized()},
        {"getChannelConfig", [](Plugin& plugin) { return text(plugin.getChannelConfig(1) != nullptr); },
         [](State state) { return text(hasChannels(state)); }},
        {"setSharedAcquisitionObject",
         [](Plugin& plugin) {
             plugin.setSharedAcquisitionObject(std::make_shared<test_support::TestClock>());
             return std::string();
         },
         always("")},
        {"checkChannelSettings",
         [](Plugin& plugin) {
             return text(plugin.checkChannelSettings({0, 1}, true));
         },
         [](State state) { return text(hasChannels(state)); }},
        {"checkChannelSettings of none",
         [](Plugin& plugin) { return text(plugin.checkChannelSettings({}, true)); }, whenInitialized()},
        {"getChannel", [](Plugin& plugin) { return text(plugin.getChannel(1) != nullptr); },
         [](State state) { return text(hasChannels(state)); }},
        {"getNominalRate", [](Plugin& plugin) { return text(std::isnan(plugin.getNominalRate())); },
         always("true")},
    };
    return all;
}

class AnyOperation : public PluginTest, public ::testing::WithParamInterface<std::tuple<State, std::size_t>> {
  protected:
    AnyOperation() { VmbSimSetWatchdog(kPatienceMs); }
    ~AnyOperation() override {
        destroy();
        VmbSimSetWatchdog(0);
    }
    void bringTo(State state) {
        plugin->setSharedAcquisitionObject(clock);
        if (state >= State::WithServices) plugin->createServices();
        if (state >= State::Initialized) plugin->initialize();
        if (state >= State::Enumerated) plugin->enumerateDevices();
        if (state >= State::Prepared) plugin->prepareAcquisition();
        if (state >= State::Acquiring) {
            plugin->onAcquisitionPrepared();
            plugin->startAcquisition();
        }
        if (state >= State::Stopped) stop();
        if (state == State::Terminated) plugin->terminate();
    }
};

TEST_P(AnyOperation, AnswersByTheStateAndLeavesThePluginUsable) {
    const auto [state, number] = GetParam();
    const Operation& operation = operations().at(number);
    bringTo(state);
    if (state == State::Terminated && std::string(operation.name) == "enumerateDevices") {
        misuses.reasons = {"the library is not started"};
    }
    EXPECT_EQ(operation.call(*plugin), operation.answer(state)) << operation.name << " in " << nameOf(state);
    // Whatever that was, a host that begins again at the beginning can record.
    plugin->stopAcquisition();
    plugin->onAcquisitionFinished();
    EXPECT_TRUE(plugin->initialize());
    plugin->enumerateDevices();
    RecordingSink sink;
    plugin->setChannelSink(0, &sink);
    EXPECT_TRUE(plugin->prepareAcquisition());
    EXPECT_TRUE(plugin->onAcquisitionPrepared());
    EXPECT_TRUE(plugin->startAcquisition());
    EXPECT_TRUE(sink.waitFor(1));
    stop();
    plugin->clearChannelSinks();
}

std::string nameOfCase(const ::testing::TestParamInfo<AnyOperation::ParamType>& info) {
    std::string name = operations()[std::get<1>(info.param)].name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name + "_" + nameOf(std::get<0>(info.param));
}

INSTANTIATE_TEST_SUITE_P(InAnyState, AnyOperation,
                         ::testing::Combine(::testing::ValuesIn(kStates),
                                            ::testing::Range<std::size_t>(0, operations().size())),
                         nameOfCase);

}  // namespace
