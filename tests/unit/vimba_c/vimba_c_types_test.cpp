// The vendor's names and numbers as clients of the binary interface need them.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "vimba_c.h"

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

/// The 58 functions of the interface, in its order.
const std::vector<std::string> kFunctions = {
    "VmbVersionQuery",
    "VmbStartup",
    "VmbShutdown",
    "VmbCamerasList",
    "VmbCameraInfoQuery",
    "VmbCameraOpen",
    "VmbCameraClose",
    "VmbFeaturesList",
    "VmbFeatureInfoQuery",
    "VmbFeatureListAffected",
    "VmbFeatureListSelected",
    "VmbFeatureAccessQuery",
    "VmbFeatureIntGet",
    "VmbFeatureIntSet",
    "VmbFeatureIntRangeQuery",
    "VmbFeatureIntIncrementQuery",
    "VmbFeatureFloatGet",
    "VmbFeatureFloatSet",
    "VmbFeatureFloatRangeQuery",
    "VmbFeatureFloatIncrementQuery",
    "VmbFeatureEnumGet",
    "VmbFeatureEnumSet",
    "VmbFeatureEnumRangeQuery",
    "VmbFeatureEnumIsAvailable",
    "VmbFeatureEnumAsInt",
    "VmbFeatureEnumAsString",
    "VmbFeatureEnumEntryGet",
    "VmbFeatureStringGet",
    "VmbFeatureStringSet",
    "VmbFeatureStringMaxlengthQuery",
    "VmbFeatureBoolGet",
    "VmbFeatureBoolSet",
    "VmbFeatureCommandRun",
    "VmbFeatureCommandIsDone",
    "VmbFeatureRawGet",
    "VmbFeatureRawSet",
    "VmbFeatureRawLengthQuery",
    "VmbFeatureInvalidationRegister",
    "VmbFeatureInvalidationUnregister",
    "VmbFrameAnnounce",
    "VmbFrameRevoke",
    "VmbFrameRevokeAll",
    "VmbCaptureStart",
    "VmbCaptureEnd",
    "VmbCaptureFrameQueue",
    "VmbCaptureFrameWait",
    "VmbCaptureQueueFlush",
    "VmbInterfacesList",
    "VmbInterfaceOpen",
    "VmbInterfaceClose",
    "VmbAncillaryDataOpen",
    "VmbAncillaryDataClose",
    "VmbMemoryRead",
    "VmbMemoryWrite",
    "VmbRegistersRead",
    "VmbRegistersWrite",
    "VmbCameraSettingsSave",
    "VmbCameraSettingsLoad",
};

std::vector<std::string> linesOf(const char* path) {
    std::ifstream file(std::string(ZELT_SOURCE_DIR "/lib/vimba_c/") + path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

TEST(VimbaC, DefinitionFileListsEachFunctionOnceAndUndecorated) {
    std::vector<std::string> lines = linesOf("VimbaC.def");
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "LIBRARY VimbaC");
    EXPECT_EQ(lines[1], "EXPORTS");
    lines.erase(lines.begin(), lines.begin() + 2);
    std::vector<std::string> expected;
    for (const std::string& name : kFunctions) expected.push_back("    " + name);
    EXPECT_EQ(kFunctions.size(), 58u);
    EXPECT_THAT(lines, ElementsAreArray(expected));
}

TEST(VimbaC, HeaderDeclaresEachFunctionOnce) {
    std::vector<std::string> declared;
    for (const std::string& line : linesOf("inc/vimba_c.h")) {
        if (line.rfind("IMEXPORTC ", 0) != 0) continue;
        const std::size_t end = line.find('(');
        const std::size_t begin = line.rfind(' ', end) + 1;
        declared.push_back(line.substr(begin, end - begin));
    }
    EXPECT_THAT(declared, ElementsAreArray(kFunctions));
}

// Compiles only as long as the parameters are those of the binary interface.
TEST(VimbaC, SignaturesAreThoseOfTheInterface) {
    using Handle = void*;
    using Call = VmbError_t (*)(Handle, const char*, std::int64_t);
    static_assert(std::is_same_v<decltype(&VmbFeatureIntSet), Call>);
    static_assert(std::is_same_v<decltype(&VmbShutdown), void (*)()>);
    static_assert(
        std::is_same_v<decltype(&VmbCameraOpen), std::int32_t (*)(const char*, std::uint32_t, Handle*)>);
    static_assert(std::is_same_v<decltype(&VmbFeatureBoolSet), std::int32_t (*)(Handle, const char*, bool)>);
    static_assert(
        std::is_same_v<decltype(&VmbFeatureEnumRangeQuery),
                       std::int32_t (*)(Handle, const char*, const char**, std::uint32_t, std::uint32_t*)>);
    static_assert(
        std::is_same_v<decltype(&VmbFeatureInvalidationRegister),
                       std::int32_t (*)(Handle, const char*, void (*)(Handle, const char*, void*), void*)>);
    static_assert(std::is_same_v<decltype(&VmbCaptureFrameQueue),
                                 std::int32_t (*)(Handle, const VmbFrame_t*, void (*)(Handle, VmbFrame_t*))>);
    static_assert(std::is_same_v<decltype(&VmbFrameAnnounce),
                                 std::int32_t (*)(Handle, const VmbFrame_t*, std::uint32_t)>);
    static_assert(
        std::is_same_v<decltype(&VmbFeatureStringGet),
                       std::int32_t (*)(Handle, const char*, char*, std::uint32_t, std::uint32_t*)>);
    static_assert(
        std::is_same_v<decltype(&VmbMemoryRead),
                       std::int32_t (*)(Handle, std::uint64_t, std::uint32_t, char*, std::uint32_t*)>);
    SUCCEED();
}

TEST(VimbaC, NumbersAreThoseOfTheInterface) {
    const VmbError_t errors[] = {VmbErrorSuccess,       VmbErrorInternalFault, VmbErrorApiNotStarted,
                                 VmbErrorNotFound,      VmbErrorBadHandle,     VmbErrorDeviceNotOpen,
                                 VmbErrorInvalidAccess, VmbErrorBadParameter,  VmbErrorStructSize,
                                 VmbErrorMoreData,      VmbErrorWrongType,     VmbErrorInvalidValue,
                                 VmbErrorTimeout,       VmbErrorOther,         VmbErrorResources,
                                 VmbErrorInvalidCall,   VmbErrorNoTL,          VmbErrorNotImplemented,
                                 VmbErrorNotSupported,  VmbErrorIncomplete,    VmbErrorIO};
    for (std::size_t i = 0; i < std::size(errors); ++i) EXPECT_EQ(errors[i], -static_cast<VmbError_t>(i));
    EXPECT_EQ(std::size(errors), 21u);
    EXPECT_THAT((std::vector<VmbFeatureData_t>{VmbFeatureDataUnknown, VmbFeatureDataInt, VmbFeatureDataFloat,
                                               VmbFeatureDataEnum, VmbFeatureDataString, VmbFeatureDataBool,
                                               VmbFeatureDataCommand, VmbFeatureDataRaw, VmbFeatureDataNone}),
                ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(
        (std::vector<VmbFeatureFlags_t>{VmbFeatureFlagsNone, VmbFeatureFlagsRead, VmbFeatureFlagsWrite,
                                        VmbFeatureFlagsVolatile, VmbFeatureFlagsModifyWrite}),
        ElementsAre(0, 1, 2, 8, 16));
    EXPECT_THAT((std::vector<VmbAccessMode_t>{VmbAccessModeNone, VmbAccessModeFull, VmbAccessModeRead,
                                              VmbAccessModeConfig, VmbAccessModeLite}),
                ElementsAre(0, 1, 2, 4, 8));
    EXPECT_THAT((std::vector<VmbFrameStatus_t>{VmbFrameStatusComplete, VmbFrameStatusIncomplete,
                                               VmbFrameStatusTooSmall, VmbFrameStatusInvalid}),
                ElementsAre(0, -1, -2, -3));
    EXPECT_THAT((std::vector<VmbFrameFlags_t>{VmbFrameFlagsNone, VmbFrameFlagsDimension, VmbFrameFlagsOffset,
                                              VmbFrameFlagsFrameID, VmbFrameFlagsTimestamp}),
                ElementsAre(0, 1, 2, 4, 8));
    EXPECT_THAT((std::vector<VmbPixelFormat_t>{
                    VmbPixelFormatMono8, VmbPixelFormatMono12, VmbPixelFormatMono12Packed, VmbPixelFormatRgb8,
                    VmbPixelFormatBgr8, VmbPixelFormatYuv411, VmbPixelFormatYuv422, VmbPixelFormatYuv444}),
                ElementsAre(0x01080001, 0x01100005, 0x010C0006, 0x02180014, 0x02180015, 0x020C001E,
                            0x0210001F, 0x02180020));
}

}  // namespace
