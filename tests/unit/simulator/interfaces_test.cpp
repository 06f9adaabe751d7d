// Interfaces of the host, other programs, and what is known of a camera by its names.
#include "simulator_fixture.h"

namespace {

using test_support::enumOf;
using test_support::intOf;
using test_support::Invalidations;
using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::kPatienceMs;
using test_support::kSystem;
using test_support::run;
using test_support::setInt;
using test_support::SimulatorTest;
using test_support::stringOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kNetwork = "SimulatedNetwork0";

class Interfaces : public SimulatorTest {
  protected:
    Interfaces() {
        const auto hear = [this](VmbHandle_t, const char* name) {
            const std::string kind = std::string(name).substr(0, std::string(name).size() - 5);
            heard.push_back(kind + " " + enumOf(kSystem, name) + " " +
                            stringOf(kSystem, (kind + "Ident").c_str()));
        };
        news.hook = hear;
    }
    // Callbacks use members of the fixture.
    ~Interfaces() override { VmbShutdown(); }

    /// Automatic discovery is on and all cameras are found.
    void discover() {
        setInt(kSystem, "GeVDiscoveryAllDuration", 1);
        run(kSystem, "GeVDiscoveryAllAuto");
        next();
        news.registerOn(kSystem, "DiscoveryCameraEvent");
        news.registerOn(kSystem, "DiscoveryInterfaceEvent");
    }
    std::vector<std::string> next() {
        EXPECT_EQ(VmbSimWaitForEvents(kPatienceMs), VmbErrorSuccess);
        return std::exchange(heard, {});
    }
    static VmbHandle_t openNetwork() {
        VmbHandle_t handle = nullptr;
        EXPECT_EQ(VmbInterfaceOpen(kNetwork, &handle), VmbErrorSuccess);
        return handle;
    }
    static VmbCameraInfo_t info(const char* id = kColourCamera) {
        VmbCameraInfo_t camera{};
        EXPECT_EQ(VmbCameraInfoQuery(id, &camera, sizeof camera), VmbErrorSuccess) << id;
        return camera;
    }
    static VmbUint32_t count() {
        VmbUint32_t found = 99;
        EXPECT_EQ(VmbInterfacesList(nullptr, 0, &found, 0), VmbErrorSuccess);
        return found;
    }

    Invalidations news;
    std::vector<std::string> heard;
};

TEST_F(Interfaces, AreListedWithoutDiscovery) {
    EXPECT_EQ(count(), 1u);
    VmbInterfaceInfo_t networks[2] = {};
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbInterfacesList(networks, 2, &found, sizeof networks[0]), VmbErrorSuccess);
    EXPECT_EQ(found, 1u);
    EXPECT_STREQ(networks[0].interfaceIdString, kNetwork);
    EXPECT_EQ(networks[0].interfaceType, VmbInterfaceEthernet);
    EXPECT_STREQ(networks[0].interfaceName, "Simulated network 0");
    EXPECT_STREQ(networks[0].serialString, "02-000000-0000");
    EXPECT_EQ(networks[0].permittedAccess, VmbAccessModeFull | VmbAccessModeRead);
    EXPECT_EQ(networks[1].interfaceIdString, nullptr);
    EXPECT_EQ(VmbInterfacesList(networks, 0, &found, sizeof networks[0]), VmbErrorMoreData);
    EXPECT_EQ(found, 1u);
}

TEST_F(Interfaces, TellWhichCamerasAreOnThem) {
    const VmbHandle_t network = openNetwork();
    EXPECT_EQ(intOf(network, "DeviceCount"), 2);
    EXPECT_EQ(stringOf(network, "DeviceID"), kColourCamera);
    setInt(network, "DeviceSelector", 1);
    EXPECT_EQ(stringOf(network, "DeviceID"), kMonochromeCamera);
    EXPECT_EQ(VmbFeatureIntSet(network, "DeviceSelector", 2), VmbErrorInvalidValue);
    VmbSimUnplugCamera(kColourCamera);
    EXPECT_EQ(intOf(network, "DeviceCount"), 2);
    run(network, "DeviceUpdateList");
    EXPECT_EQ(intOf(network, "DeviceCount"), 1);
    EXPECT_EQ(intOf(network, "DeviceSelector"), 0);
    EXPECT_EQ(stringOf(network, "DeviceID"), kMonochromeCamera);
    VmbSimUnplugCamera(kMonochromeCamera);
    run(network, "DeviceUpdateList");
    EXPECT_EQ(intOf(network, "DeviceCount"), 0);
    EXPECT_EQ(stringOf(network, "DeviceID"), "");
}

TEST_F(Interfaces, DescribeTheirFeatures) {
    const VmbHandle_t network = openNetwork();
    VmbFeatureInfo_t feature{};
    EXPECT_EQ(VmbFeatureInfoQuery(network, "DeviceSelector", &feature, sizeof feature), VmbErrorSuccess);
    EXPECT_TRUE(feature.hasSelectedFeatures);
    EXPECT_STREQ(feature.category, "/DeviceEnumeration");
    EXPECT_EQ(VmbFeatureInfoQuery(network, "DeviceUpdateList", &feature, sizeof feature), VmbErrorSuccess);
    EXPECT_TRUE(feature.hasAffectedFeatures);
    VmbUint32_t found = 0;
    EXPECT_EQ(VmbFeatureListSelected(network, "DeviceSelector", &feature, 1, &found, sizeof feature),
              VmbErrorSuccess);
    EXPECT_STREQ(feature.name, "DeviceID");
}

TEST_F(Interfaces, TellOfTheirUpdates) {
    const VmbHandle_t network = openNetwork();
    Invalidations updates;
    updates.registerOn(network, "DeviceCount");
    run(network, "DeviceUpdateList");
    next();
    EXPECT_THAT(updates.names(), ElementsAre("DeviceCount"));
    EXPECT_EQ(VmbInterfaceClose(network), VmbErrorSuccess);
    VmbInt64_t value = 0;
    EXPECT_EQ(VmbFeatureIntGet(network, "DeviceCount", &value), VmbErrorBadHandle);
}

TEST_F(Interfaces, CannotBeClosedInTheirOwnCallbacks) {
    const VmbHandle_t network = openNetwork();
    Invalidations updates;
    VmbError_t closed = VmbErrorSuccess;
    updates.hook = [&](VmbHandle_t handle, const char*) { closed = VmbInterfaceClose(handle); };
    updates.registerOn(network, "DeviceCount");
    run(network, "DeviceUpdateList");
    next();
    EXPECT_EQ(closed, VmbErrorInvalidCall);
    EXPECT_EQ(VmbInterfaceClose(network), VmbErrorSuccess);
}

TEST_F(Interfaces, AreOpenedByTheirIdentifier) {
    VmbHandle_t handle = this;
    EXPECT_EQ(VmbInterfaceOpen("SimulatedNetwork9", &handle), VmbErrorNotFound);
    EXPECT_EQ(VmbInterfaceOpen("", &handle), VmbErrorNotFound);
    EXPECT_EQ(handle, this);
    EXPECT_NE(openNetwork(), openNetwork());
}

TEST_F(Interfaces, VanishWithTheirCameras) {
    discover();
    const VmbHandle_t network = openNetwork();
    const VmbHandle_t camera = open();
    EXPECT_EQ(VmbSimUnplugInterface(kNetwork), VmbErrorSuccess);
    EXPECT_THAT(next(), ElementsAre(std::string("DiscoveryInterface Missing ") + kNetwork,
                                    std::string("DiscoveryCamera Missing ") + kColourCamera,
                                    std::string("DiscoveryCamera Missing ") + kMonochromeCamera));
    EXPECT_EQ(count(), 0u);
    VmbInt64_t value = 0;
    EXPECT_EQ(VmbFeatureIntGet(network, "DeviceCount", &value), VmbErrorBadHandle);
    EXPECT_EQ(VmbFeatureIntGet(camera, "Width", &value), VmbErrorBadHandle);
    VmbHandle_t handle = nullptr;
    EXPECT_EQ(VmbInterfaceOpen(kNetwork, &handle), VmbErrorNotFound);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, &handle), VmbErrorNotFound);
    EXPECT_EQ(VmbInterfaceClose(network), VmbErrorBadHandle);
}

TEST_F(Interfaces, ComeBackWithTheCamerasThatHaveACable) {
    discover();
    VmbSimUnplugInterface(kNetwork);
    VmbSimUnplugCamera(kMonochromeCamera);
    next();
    EXPECT_EQ(VmbSimPlugInterface(kNetwork), VmbErrorSuccess);
    EXPECT_THAT(next(), ElementsAre(std::string("DiscoveryInterface Detected ") + kNetwork,
                                    std::string("DiscoveryCamera Detected ") + kColourCamera));
    EXPECT_EQ(intOf(openNetwork(), "DeviceCount"), 1);
    VmbSimPlugCamera(kMonochromeCamera);
    EXPECT_THAT(next(), ElementsAre(std::string("DiscoveryCamera Detected ") + kMonochromeCamera));
}

TEST_F(Interfaces, MakeNoNewsWhenNothingChangesOrNobodyLooks) {
    discover();
    EXPECT_EQ(VmbSimPlugInterface(kNetwork), VmbErrorSuccess);
    EXPECT_THAT(next(), IsEmpty());
    run(kSystem, "GeVDiscoveryAllOff");
    VmbSimUnplugInterface(kNetwork);
    EXPECT_THAT(next(), IsEmpty());
    EXPECT_EQ(VmbSimUnplugInterface("?"), VmbErrorNotFound);
    EXPECT_EQ(VmbSimPlugInterface(nullptr), VmbErrorBadParameter);
}

TEST_F(Interfaces, ACameraIsKnownByAllItsNames) {
    for (const char* id : {kColourCamera, "000F31A10001", "169.254.10.1", "50-0503300001"}) {
        EXPECT_STREQ(info(id).cameraIdString, kColourCamera);
        VmbHandle_t camera = nullptr;
        EXPECT_EQ(VmbCameraOpen(id, VmbAccessModeFull, &camera), VmbErrorSuccess) << id;
        VmbCameraClose(camera);
    }
    EXPECT_STREQ(info("169.254.10.2").cameraIdString, kMonochromeCamera);
    VmbCameraInfo_t camera{};
    EXPECT_EQ(VmbCameraInfoQuery("169.254.10.3", &camera, sizeof camera), VmbErrorNotFound);
    VmbSimUnplugCamera(kColourCamera);
    EXPECT_EQ(VmbCameraInfoQuery(kColourCamera, &camera, sizeof camera), VmbErrorNotFound);
    EXPECT_EQ(camera.cameraIdString, nullptr);
}

TEST_F(Interfaces, ACameraThatAnotherProgramControlsIsOpenForReadingOnly) {
    EXPECT_EQ(info().permittedAccess, VmbAccessModeFull | VmbAccessModeRead);
    EXPECT_EQ(VmbSimTakeControl(kColourCamera, true), VmbErrorSuccess);
    EXPECT_EQ(info().permittedAccess, VmbAccessModeRead);
    VmbHandle_t camera = nullptr;
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeFull, &camera), VmbErrorInvalidAccess);
    EXPECT_EQ(VmbCameraOpen(kColourCamera, VmbAccessModeRead, &camera), VmbErrorSuccess);
    VmbCameraClose(camera);
    EXPECT_EQ(VmbSimTakeControl(kColourCamera, false), VmbErrorSuccess);
    EXPECT_EQ(info().permittedAccess, VmbAccessModeFull | VmbAccessModeRead);
    open();
}

TEST_F(Interfaces, ACameraThatThisProgramControlsCannotBeTaken) {
    const VmbHandle_t camera = open();
    EXPECT_EQ(info().permittedAccess, VmbAccessModeRead);
    EXPECT_EQ(VmbSimTakeControl(kColourCamera, true), VmbErrorInvalidAccess);
    VmbCameraClose(camera);
    EXPECT_EQ(info().permittedAccess, VmbAccessModeFull | VmbAccessModeRead);
    EXPECT_EQ(VmbSimTakeControl("?", true), VmbErrorNotFound);
    EXPECT_EQ(VmbSimTakeControl(nullptr, true), VmbErrorBadParameter);
}

TEST_F(Interfaces, TakingAndGivingBackIsNewsWhileSomebodyLooks) {
    VmbSimTakeControl(kMonochromeCamera, true);
    discover();
    VmbSimTakeControl(kColourCamera, true);
    VmbSimTakeControl(kColourCamera, true);
    EXPECT_THAT(next(), ElementsAre(std::string("DiscoveryCamera Unreachable ") + kColourCamera));
    VmbSimTakeControl(kColourCamera, false);
    EXPECT_THAT(next(), ElementsAre(std::string("DiscoveryCamera Reachable ") + kColourCamera));
}

}  // namespace
