/// A host that sets one camera's settings and listens to what it is told.
#pragma once

#include <string>
#include <vector>

#include "channel_fixture.h"
#include "config_item_variant.h"

namespace test_support {

inline std::string integerGet(const char* feature) {
    return call("VmbFeatureIntGet", quoted(feature));
}
inline std::string realGet(const char* feature) {
    return call("VmbFeatureFloatGet", quoted(feature));
}
inline std::string integerSet(const char* feature, const std::string& value) {
    return call("VmbFeatureIntSet", quoted(feature) + ", " + value);
}
inline std::string realSet(const char* feature, const std::string& value) {
    return call("VmbFeatureFloatSet", quoted(feature) + ", " + value);
}
inline std::string entrySet(const char* feature, const std::string& entry) {
    return call("VmbFeatureEnumSet", quoted(feature) + ", " + quoted(entry));
}

/// Keys that a channel tells the host of, in order.
class Changes {
  public:
    explicit Changes(std::shared_ptr<channel_config::IfChannelConfig> channel)
        : m_channel(std::move(channel)) {
        m_channel->setChangeCallback([this](const std::string& key) { keys.push_back(key); });
    }
    ~Changes() { m_channel->setChangeCallback({}); }
    Changes(const Changes&) = delete;
    Changes& operator=(const Changes&) = delete;

    std::vector<std::string> keys;

  private:
    const std::shared_ptr<channel_config::IfChannelConfig> m_channel;
};

class Settings : public OneCamera {
  protected:
    bool setNumber(const char* key, double value) {
        return channel(0)->setItem(key, config_items::ScalarConfigItem(value, ""));
    }
    bool setText(const char* key, const std::string& value) {
        return channel(0)->setItem(key, config_items::SingleValueConfigItem<std::string>(value));
    }
    bool runAction(const char* key) {
        return channel(0)->setItem(key, config_items::SingleValueConfigItem<bool>(true));
    }
    /// The channel is there, but its camera is another program's.
    void openInVain() {
        VmbSimTakeControl(kColourCamera, true);
        enumerate();
        VmbSimTakeControl(kColourCamera, false);
        ASSERT_THAT(lastMessage(0), ::testing::HasSubstr("Cannot open camera"));
    }
    /// Vendor calls since the journal was started, without list queries.
    static std::string calls() { return asText(withoutQueries(hostCalls())); }
    std::string refusal(const std::string& reason) {
        return "Cannot configure camera '" + kName + "': " + reason;
    }
};

}  // namespace test_support
