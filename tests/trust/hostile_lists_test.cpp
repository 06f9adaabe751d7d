// Lists and texts of a library that lies about their number, length and form.
#include <pugixml.hpp>

#include "hostile_fixture.h"
#include "if_system_topology_service.h"

namespace {

using test_support::HostileTest;
using test_support::HostileVendor;
using test_support::isFeature;
using test_support::kMonochromeCamera;
using test_support::LogCapture;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr VmbUint32_t kFourBillion = 4'294'967'295;
/// One every 50 ms.
constexpr std::size_t kFramesOfASecond = 20;

class HostileLists : public HostileTest {
  protected:
    /// The library's list of cameras: the honest ones with what `spoil` makes of each.
    void listCameras(const std::function<void(std::vector<VmbCameraInfo_t>&)>& spoil) {
        vendor.camerasList.instead = [this, spoil](VmbCameraInfo_t* array, VmbUint32_t length,
                                                   VmbUint32_t* found, VmbUint32_t size) -> VmbError_t {
            VmbUint32_t count = 0;
            EXPECT_EQ(vendor.camerasList.honest(nullptr, 0, &count, size), VmbErrorSuccess);
            m_records.resize(count);
            EXPECT_EQ(vendor.camerasList.honest(m_records.data(), count, &count, size), VmbErrorSuccess);
            spoil(m_records);
            *found = static_cast<VmbUint32_t>(m_records.size());
            if (array == nullptr) return VmbErrorSuccess;
            std::copy_n(m_records.begin(), std::min<std::size_t>(length, m_records.size()), array);
            return length < m_records.size() ? VmbErrorMoreData : VmbErrorSuccess;
        };
    }
    /// What a string feature of every camera does.
    void tellText(const char* feature,
                  const std::function<VmbError_t(char*, VmbUint32_t, VmbUint32_t*)>& tell) {
        vendor.stringGet.instead = [this, feature, tell](VmbHandle_t handle, const char* name, char* buffer,
                                                         VmbUint32_t size, VmbUint32_t* filled) {
            if (isFeature(name, feature)) return tell(buffer, size, filled);
            return vendor.stringGet.honest(handle, name, buffer, size, filled);
        };
    }
    /// Why the library's list of cameras was refused.
    std::string refusal() {
        try {
            plugin->enumerateDevices();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "nothing was refused";
    }
    std::string topology() {
        aux();
        plugin_api::IfService* service = nullptr;
        EXPECT_TRUE(services->getService(
            boost::uuids::string_generator()("{A5C594EA-1C7F-41BF-A588-9AC316FB5973}"), &service));
        std::string text;
        const auto keep = [](void* context, const char* told, std::size_t length) {
            static_cast<std::string*>(context)->append(told, length);
        };
        dynamic_cast<zelt::IfSystemTopologyService&>(*service).getTopology(0, keep, &text);
        return text;
    }

  private:
    std::vector<VmbCameraInfo_t> m_records;
};

TEST_F(HostileLists, ACameraWithoutAnyTextButItsIdIsCalledByThat) {
    listCameras([](std::vector<VmbCameraInfo_t>& records) {
        for (VmbCameraInfo_t& record : records) {
            record.cameraName = record.modelName = record.serialString = record.interfaceIdString = nullptr;
        }
    });
    enumerate();
    ASSERT_TRUE(isListed(0));
    EXPECT_EQ(text(0, config_keys::kDefaultName), kMonochromeCamera);
    EXPECT_EQ(text(0, config_keys::kAdditionalChannelInfo2), "Allied Vision Technologies//");
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesOfASecond);
}

TEST_F(HostileLists, CamerasOfOneIdAreOneChannel) {
    listCameras([](std::vector<VmbCameraInfo_t>& records) { records.resize(3, records.at(0)); });
    enumerate();
    plugin->enumerateDevices();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u));
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesOfASecond);
}

TEST_F(HostileLists, NamesOfAMegabyteArePassedOnWhole) {
    const std::string model(1'000'000, 'm');
    const std::string serial(1'000'000, '7');
    listCameras([&](std::vector<VmbCameraInfo_t>& records) {
        records.at(0).modelName = model.c_str();
        records.at(0).serialString = serial.c_str();
    });
    enumerate();
    EXPECT_EQ(text(0, config_keys::kDefaultName), model + " (" + serial + ")");
    EXPECT_THAT(topology(), HasSubstr(serial));
}

TEST_F(HostileLists, AnIdOfAMegabyteIsACameraThatCannotBeOpened) {
    const std::string id(1'000'000, 'x');
    listCameras([&](std::vector<VmbCameraInfo_t>& records) { records.at(0).cameraIdString = id.c_str(); });
    enumerate();
    ASSERT_TRUE(isListed(0));
    EXPECT_EQ(text(0, config_keys::kShortId), id);
    EXPECT_THAT(lastMessage(0), HasSubstr("The designated instance (camera, feature etc.) cannot be found"));
}

TEST_F(HostileLists, NamesThatAreNoUtf8LeaveTheTopologyReadable) {
    // A lone continuation, a cut sequence, an overlong slash, a surrogate, a code beyond all, a control
    // character, and a name that is right.
    listCameras([](std::vector<VmbCameraInfo_t>& records) {
        records.at(0).modelName =
            "\x80|\xE2\x82|\xC0\xAF|\xED\xA0\x80|\xF4\x90\x80\x80|\x01|K\xC3\xA4se\xE2\x82";
        records.at(0).serialString = "1";
    });
    enumerate();
    pugi::xml_document document;
    const std::string told = topology();
    ASSERT_TRUE(document.load_string(told.c_str())) << told;
    const std::string none = "\xEF\xBF\xBD";
    EXPECT_EQ(std::string(document.select_node("//Channel").node().attribute("Name").value()),
              none + "|" + none + "|" + none + "|" + none + "|" + none + "|" + none + "|K\xC3\xA4se" + none +
                  " (1)");
}

TEST_F(HostileLists, FourBillionCamerasAreNotBelieved) {
    vendor.camerasList.instead = [](VmbCameraInfo_t*, VmbUint32_t, VmbUint32_t* found,
                                    VmbUint32_t) -> VmbError_t {
        *found = kFourBillion;
        return VmbErrorSuccess;
    };
    EXPECT_TRUE(plugin->initialize());
    EXPECT_EQ(refusal(), "Could not retrieve the camera list: the library counts 4294967295 entries");
    EXPECT_THAT(plugin->getChannelIds(), IsEmpty());
}

TEST_F(HostileLists, ARecordCountBeyondTheRoomThatWasMadeIsNotBelieved) {
    listCameras([](std::vector<VmbCameraInfo_t>&) {});
    const auto honestly = vendor.camerasList.instead;
    vendor.camerasList.instead = [honestly](VmbCameraInfo_t* array, VmbUint32_t length, VmbUint32_t* found,
                                            VmbUint32_t size) {
        const VmbError_t result = honestly(array, length, found, size);
        if (array != nullptr) *found = kFourBillion;
        return result;
    };
    enumerate();
    EXPECT_THAT(plugin->getChannelIds(), ElementsAre(0u));
}

TEST_F(HostileLists, FourBillionFeaturesAreNotBelieved) {
    vendor.featuresList.instead = [](VmbHandle_t, VmbFeatureInfo_t*, VmbUint32_t, VmbUint32_t* found,
                                     VmbUint32_t) -> VmbError_t {
        *found = kFourBillion;
        return VmbErrorSuccess;
    };
    const LogCapture log(UniLogSeverityLevel::Error);
    enumerate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Error), ElementsAre("Cannot gather camera features"));
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesOfASecond);
}

TEST_F(HostileLists, FeaturesWithoutNamesAreListedWithoutNames) {
    vendor.featuresList.instead = [this](VmbHandle_t handle, VmbFeatureInfo_t* array, VmbUint32_t length,
                                         VmbUint32_t* found, VmbUint32_t size) {
        const VmbError_t result = vendor.featuresList.honest(handle, array, length, found, size);
        for (VmbUint32_t at = 0; array != nullptr && at < length; ++at) {
            array[at].name = array[at].description = nullptr;
            array[at].featureDataType = 77;
        }
        return result;
    };
    const LogCapture log(UniLogSeverityLevel::Debug);
    enumerate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Debug), Contains("feature:  Type: Unknown"));
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesOfASecond);
}

TEST_F(HostileLists, FourBillionEntriesAreNone) {
    vendor.enumRangeQuery.instead = [](VmbHandle_t, const char*, const char**, VmbUint32_t,
                                       VmbUint32_t* count) -> VmbError_t {
        *count = kFourBillion;
        return VmbErrorSuccess;
    };
    const test_support::AssertionCapture assertions;
    enumerate();
    EXPECT_THAT(assertions.expressions(), ElementsAre("frame_format_found"));
    EXPECT_THAT(channel(0)->getConstraints(config_keys::kFrameFormat), IsEmpty());
}

TEST_F(HostileLists, EntriesWithoutNamesAreLeftOut) {
    vendor.enumRangeQuery.instead = [this](VmbHandle_t handle, const char* name, const char** array,
                                           VmbUint32_t length, VmbUint32_t* count) {
        const VmbError_t result = vendor.enumRangeQuery.honest(handle, name, array, length, count);
        if (array != nullptr && isFeature(name, "ExposureAuto")) array[0] = nullptr;
        if (array != nullptr && isFeature(name, "ExposureAuto")) *count = kFourBillion;
        return result;
    };
    enumerate();
    // Off, Once and Continuous without the first.
    EXPECT_EQ(channel(0)->getConstraints(config_keys::kCameraExposureAuto).size(), 2u);
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesOfASecond);
}

TEST_F(HostileLists, AnEntryWithoutANameIsNoneOfTheChoices) {
    vendor.enumGet.instead = [this](VmbHandle_t handle, const char* name, const char** value) {
        if (!isFeature(name, "ExposureAuto")) return vendor.enumGet.honest(handle, name, value);
        *value = nullptr;
        return VmbError_t{VmbErrorSuccess};
    };
    enumerate();
    EXPECT_EQ(text(0, config_keys::kCameraExposureAuto), "Unknown value from API: ''");
}

TEST_F(HostileLists, ATextWithoutAnEndIsUnreadable) {
    tellText("DeviceModelName", [](char* buffer, VmbUint32_t size, VmbUint32_t* filled) -> VmbError_t {
        if (buffer != nullptr) std::fill_n(buffer, size, 'A');
        *filled = 16;
        return VmbErrorSuccess;
    });
    const LogCapture log(UniLogSeverityLevel::Warning);
    enumerate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                Contains("Camera Manta_G-032B (50-0503200002) model name unreadable: The text of the feature "
                         "'DeviceModelName' has no end within its 16 bytes"));
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesOfASecond);
}

TEST_F(HostileLists, ATextOfFourGigabytesIsUnreadable) {
    tellText("DeviceModelName", [](char*, VmbUint32_t, VmbUint32_t* filled) -> VmbError_t {
        *filled = kFourBillion;
        return VmbErrorSuccess;
    });
    const LogCapture log(UniLogSeverityLevel::Warning);
    enumerate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                Contains(HasSubstr("The text of the feature 'DeviceModelName' has 4294967295 bytes")));
    EXPECT_EQ(framesOfAnHonestSecond(0), kFramesOfASecond);
}

TEST_F(HostileLists, ATextThatGrowsBetweenTheCallsIsUnreadable) {
    tellText("DeviceModelName", [](char* buffer, VmbUint32_t, VmbUint32_t* filled) -> VmbError_t {
        *filled = buffer == nullptr ? 4 : kFourBillion;
        return buffer == nullptr ? VmbErrorSuccess : VmbErrorMoreData;
    });
    const LogCapture log(UniLogSeverityLevel::Warning);
    enumerate();
    EXPECT_THAT(log.texts(UniLogSeverityLevel::Warning),
                Contains(HasSubstr("model name unreadable: Cannot read existing string feature")));
}

}  // namespace
