#include "zelt_gige_fourcc.h"

#include <algorithm>
#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

using namespace zelt_gige_camera;

struct Row {
    const char* text;
    std::uint32_t code, bits, packed, yuv, subsampling, planes;
};

// Codes written out by hand: first letter in the lowest byte.
constexpr Row kRows[] = {
    {"RGB", 0x00424752, 24, 1, 0, 1, 1},  {"BGR", 0x00524742, 24, 1, 0, 1, 1},
    {"RGBA", 0x41424752, 32, 1, 0, 1, 1}, {"Y800", 0x30303859, 8, 1, 1, 1, 1},
    {"Y411", 0x31313459, 12, 1, 1, 2, 1}, {"Y422", 0x32323459, 16, 1, 1, 2, 1},
    {"YUY2", 0x32595559, 16, 1, 1, 2, 1}, {"I420", 0x30323449, 12, 0, 1, 2, 2},
    {"YV12", 0x32315659, 12, 0, 1, 2, 2},
};

std::string failureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(FourCc, TableHoldsTheNineFormatsOrderedByCode) {
    EXPECT_EQ(fourCcFormats().size(), 9u);
    EXPECT_TRUE(std::is_sorted(fourCcFormats().begin(), fourCcFormats().end(),
                               [](const FourCcFormat& a, const FourCcFormat& b) { return a.code < b.code; }));
    for (const Row& row : kRows) {
        const FourCcFormat& format = fourCcFormat(row.code);
        EXPECT_EQ(format.bitsPerPixel, row.bits) << row.text;
        EXPECT_EQ(format.packed, row.packed) << row.text;
        EXPECT_EQ(format.yuvFamily, row.yuv) << row.text;
        EXPECT_EQ(format.subsampling, row.subsampling) << row.text;
        EXPECT_EQ(format.planes, row.planes) << row.text;
    }
}

TEST(FourCc, TurnsTextIntoCodeAndBack) {
    for (const Row& row : kRows) {
        EXPECT_EQ(fourCcCode(row.text), row.code);
        EXPECT_EQ(fourCcText(row.code), row.text);
    }
}

TEST(FourCc, IgnoresUpperAndLowerCase) {
    EXPECT_EQ(fourCcCode("y800"), 0x30303859u);
    EXPECT_EQ(fourCcCode("rGb"), 0x00424752u);
}

TEST(FourCc, RefusesTextsThatNameNoFormat) {
    for (const char* text : {"", "Y80", "Y8000", "RGBX", "MJPG", "RGB ", "{800"}) {
        EXPECT_EQ(failureOf([&] { fourCcCode(text); }), "fourcc invalid") << text;
    }
}

TEST(FourCc, RefusesCodesThatTheTableLacks) {
    EXPECT_EQ(failureOf([] { fourCcFormat(0); }), "Unsupported FourCC format");
    EXPECT_EQ(failureOf([] { fourCcFormat(0x42475200); }), "Unsupported FourCC format");
}

TEST(PixelFormats, ComeInTheOrderOfPreference) {
    const auto& names = pixelFormatNames();
    EXPECT_STREQ(names[0].cameraEntry, "YUV422Packed");
    EXPECT_STREQ(names[0].fourCc, "Y422");
    EXPECT_STREQ(names[1].cameraEntry, "RGB8Packed");
    EXPECT_STREQ(names[1].fourCc, "RGB");
    EXPECT_STREQ(names[2].cameraEntry, "Mono8");
    EXPECT_STREQ(names[2].fourCc, "Y800");
}

TEST(FramePayload, IsBitsTimesPixelsOverEightRoundedDown) {
    EXPECT_EQ(framePayload("Y422", 656, 492), 645'504u);
    EXPECT_EQ(framePayload("Y800", 656, 492), 322'752u);
    EXPECT_EQ(framePayload("Y411", 3, 3), 13u);
    EXPECT_EQ(framePayload("RGB", 65536, 65536), 12'884'901'888u);
}

TEST(FramePayload, IsZeroForAFormatThatIsNotKnown) {
    EXPECT_EQ(framePayload("", 656, 492), 0u);
    EXPECT_EQ(framePayload("MJPG", 656, 492), 0u);
}

}  // namespace
