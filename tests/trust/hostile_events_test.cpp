// Events of a library that calls at the wrong time, on the wrong thread, and with the wrong names.
#include "hostile_fixture.h"

namespace {

using test_support::AssertionCapture;
using test_support::HostileTest;
using test_support::HostileVendor;
using test_support::isFeature;
using test_support::kMonochromeCamera;
using test_support::kSecond;
using test_support::LogCapture;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Gt;
using ::testing::IsEmpty;

/// Of a second, one every 50 ms.
constexpr std::size_t kFramesThatAreDue = 20;

/// Keeps what the plug-in registers, so that a test can call it.
class HostileEvents : public HostileTest {
  protected:
    HostileEvents() {
        vendor.invalidationRegister.instead = [this](VmbHandle_t handle, const char* name,
                                                     VmbInvalidationCallback callback, void* context) {
            m_registered[name] = {handle, name, callback, context};
            return vendor.invalidationRegister.honest(handle, name, callback, context);
        };
    }

    void raise(const char* registered, const char* told) {
        const Registered& found = m_registered.at(registered);
        found.callback(found.handle, told, found.context);
    }
    void raise(const char* event) { raise(event, event); }

  private:
    struct Registered {
        VmbHandle_t handle;
        std::string name;
        VmbInvalidationCallback callback;
        void* context;
    };
    std::map<std::string, Registered> m_registered;
};

TEST_F(HostileEvents, WithoutANameAreIgnored) {
    enumerate();
    EXPECT_TRUE(plugin->prepareAcquisition());
    const AssertionCapture assertions;
    const LogCapture log(UniLogSeverityLevel::Debug);
    raise("EventAcquisitionStart", nullptr);
    raise("EventAcquisitionEnd", nullptr);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(assertions.failures(), IsEmpty());
    EXPECT_TRUE(plugin->prepareAcquisition());
}

TEST_F(HostileEvents, OfDiscoveryWithoutANameAreAProgrammingErrorAndNoMore) {
    enumerate();
    const AssertionCapture assertions;
    raise("DiscoveryCameraEvent", nullptr);
    EXPECT_THAT(assertions.expressions(), ElementsAre("boost::equals(name, \"DiscoveryCameraEvent\")"));
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesThatAreDue);
}

TEST_F(HostileEvents, AfterTheyWereUnregisteredAreIgnored) {
    enumerate();
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesThatAreDue);
    const LogCapture log(UniLogSeverityLevel::Debug);
    raise("EventAcquisitionStart");
    raise("EventAcquisitionEnd");
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesThatAreDue);
    plugin->terminate();
    log.lines();
    raise("EventAcquisitionStart");
    raise("DiscoveryCameraEvent");
}

TEST_F(HostileEvents, OfDiscoveryWithinTheRegistrationAreTaken) {
    const auto keep = vendor.invalidationRegister.instead;
    vendor.invalidationRegister.instead = [this, keep](VmbHandle_t handle, const char* name,
                                                       VmbInvalidationCallback callback, void* context) {
        const VmbError_t result = keep(handle, name, callback, context);
        raise(name);
        return result;
    };
    vendor.commandRun.instead = [this](VmbHandle_t handle, const char* name) {
        if (isFeature(name, "GeVDiscoveryAllAuto")) raise("DiscoveryCameraEvent");
        return vendor.commandRun.honest(handle, name);
    };
    enumerate();
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesThatAreDue);
}

TEST_F(HostileEvents, WithinTheListOfCamerasAreTaken) {
    vendor.enumGet.instead = [this](VmbHandle_t handle, const char* name, const char** value) {
        if (!isFeature(name, "DiscoveryCameraEvent")) return vendor.enumGet.honest(handle, name, value);
        *value = "Missing";
        return VmbError_t{VmbErrorSuccess};
    };
    vendor.camerasList.instead = [this](VmbCameraInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                                        VmbUint32_t size) {
        raise("DiscoveryCameraEvent");
        return vendor.camerasList.honest(array, length, found, size);
    };
    enumerate();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u));
    vendor = HostileVendor();
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesThatAreDue);
}

TEST_F(HostileEvents, WithinTheWritingOfASettingAreTaken) {
    enumerate();
    EXPECT_TRUE(plugin->prepareAcquisition());
    unsigned raised = 0;
    vendor.floatSet.instead = [&](VmbHandle_t handle, const char* name, double value) {
        ++raised;
        raise("EventAcquisitionStart");
        raise("EventAcquisitionEnd");
        return vendor.floatSet.honest(handle, name, value);
    };
    EXPECT_TRUE(setValue(*channel(0), config_keys::kCameraGain, 3));
    EXPECT_EQ(text(0, config_keys::kCameraGain), "3");
    EXPECT_THAT(raised, Gt(0u));
    vendor.floatSet.instead = nullptr;
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesThatAreDue);
}

TEST_F(HostileEvents, OnTheThreadThatStopsTheCameraAreTaken) {
    enumerate();
    start();
    vendor.commandRun.instead = [this](VmbHandle_t handle, const char* name) {
        if (isFeature(name, "AcquisitionStop")) raise("EventAcquisitionEnd");
        return vendor.commandRun.honest(handle, name);
    };
    stop();
    vendor.commandRun.instead = nullptr;
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesThatAreDue);
}

}  // namespace
