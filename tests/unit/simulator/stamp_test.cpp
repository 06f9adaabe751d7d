// The stamp in a picture, and what it says about damage.
#include "simulator_fixture.h"

namespace {

using test_support::kColourCamera;
using test_support::kMonochromeCamera;
using test_support::run;
using test_support::setEnum;
using test_support::setInt;
using test_support::Stream;
using test_support::StreamTest;
using ::testing::Each;

using Bytes = std::vector<std::uint8_t>;

class Picture : public StreamTest {
  protected:
    /// The `nth` picture of an acquisition.
    static Bytes pictureOf(VmbHandle_t camera, const char* id, std::uint64_t nth = 1) {
        Stream stream(camera);
        Bytes bytes;
        stream.hook = [&](VmbFrame_t& frame) {
            const auto* begin = static_cast<const std::uint8_t*>(frame.buffer);
            if (frame.frameID == nth) bytes.assign(begin, begin + frame.imageSize);
        };
        stream.startCapture();
        run(camera, "AcquisitionStart");
        waitForFrames(nth, id);
        stream.endCapture();
        return bytes;
    }
    static VmbError_t verdict(const Bytes& bytes) {
        VmbSimFrameStamp stamp;
        return VmbSimReadStamp(bytes.data(), bytes.size(), &stamp);
    }
};

TEST_F(Picture, AChangedByteAnywhereIsNoticed) {
    const VmbHandle_t camera = openFast();
    setInt(camera, "Width", 64);
    setInt(camera, "Height", 16);
    Bytes bytes = pictureOf(camera, kColourCamera);
    ASSERT_EQ(bytes.size(), 1024u);
    ASSERT_EQ(verdict(bytes), VmbErrorSuccess);
    for (std::uint8_t& byte : bytes) {
        for (const int bit : {0, 7}) {
            byte = static_cast<std::uint8_t>(byte ^ (1 << bit));
            EXPECT_EQ(verdict(bytes), VmbErrorIncomplete) << "byte " << &byte - bytes.data();
            byte = static_cast<std::uint8_t>(byte ^ (1 << bit));
        }
    }
    EXPECT_EQ(verdict(bytes), VmbErrorSuccess);
}

TEST_F(Picture, DamageThatWouldCancelOutInASumIsNoticed) {
    const VmbHandle_t camera = openFast();
    Bytes bytes = pictureOf(camera, kColourCamera);
    // The same bit twice, one lane apart; two bytes exchanged; a row moved.
    Bytes twice = bytes;
    twice[1007] ^= 0x80;
    twice[1007 + 64] ^= 0x80;
    EXPECT_EQ(verdict(twice), VmbErrorIncomplete);
    Bytes exchanged = bytes;
    std::swap(exchanged[656 * 400 + 3], exchanged[656 * 400 + 603]);
    EXPECT_EQ(verdict(exchanged), VmbErrorIncomplete);
    Bytes moved = bytes;
    std::rotate(moved.begin() + 656 * 100, moved.begin() + 656 * 101, moved.end());
    EXPECT_EQ(verdict(moved), VmbErrorIncomplete);
}

TEST_F(Picture, TooFewOrTooManyBytesAreNotThePicture) {
    const VmbHandle_t camera = openFast();
    Bytes bytes = pictureOf(camera, kColourCamera);
    bytes.push_back(0);
    EXPECT_EQ(verdict(bytes), VmbErrorIncomplete);
    bytes.resize(bytes.size() - 2);
    EXPECT_EQ(verdict(bytes), VmbErrorIncomplete);
    bytes.resize(72);
    EXPECT_EQ(verdict(bytes), VmbErrorIncomplete);
    bytes.resize(71);
    EXPECT_EQ(verdict(bytes), VmbErrorNotFound);
}

TEST_F(Picture, OtherBytesHaveNoStamp) {
    EXPECT_EQ(verdict(Bytes(1024, 0)), VmbErrorNotFound);
    VmbSimFrameStamp stamp;
    const std::uint8_t byte = 0;
    EXPECT_EQ(VmbSimReadStamp(nullptr, 100, &stamp), VmbErrorBadParameter);
    EXPECT_EQ(VmbSimReadStamp(&byte, 1, nullptr), VmbErrorBadParameter);
}

TEST_F(Picture, IsWholeInEveryFormatAndSize) {
    const std::pair<const char*, std::vector<const char*>> cameras[] = {
        {kColourCamera, {"Mono8", "BayerRG8", "YUV411Packed", "YUV422Packed", "RGB8Packed", "BGR8Packed"}},
        {kMonochromeCamera, {"Mono8", "Mono12"}}};
    for (const auto& [id, formats] : cameras) {
        const VmbHandle_t camera = openFast(id);
        for (const char* format : formats) {
            setEnum(camera, "PixelFormat", format);
            EXPECT_EQ(verdict(pictureOf(camera, id, 2)), VmbErrorSuccess) << format;
        }
    }
}

TEST_F(Picture, TheSmallestPicturesCarryNoStampAndDoNoHarm) {
    const VmbHandle_t camera = openFast(kMonochromeCamera);
    const std::pair<VmbInt64_t, VmbInt64_t> sizes[] = {{1, 1}, {7, 10}, {8, 9}, {656, 1}, {1, 492}};
    for (const auto& [width, height] : sizes) {
        setInt(camera, "Width", width);
        setInt(camera, "Height", height);
        const Bytes bytes = pictureOf(camera, kMonochromeCamera);
        EXPECT_EQ(bytes.size(), static_cast<std::size_t>(width * height));
        EXPECT_EQ(verdict(bytes), bytes.size() < 72 ? VmbErrorNotFound : VmbErrorSuccess);
    }
}

TEST_F(Picture, EveryFrameIsAnother) {
    const VmbHandle_t camera = openFast();
    const Bytes first = pictureOf(camera, kColourCamera, 1);
    const Bytes second = pictureOf(camera, kColourCamera, 2);
    // Behind the stamp, too.
    EXPECT_FALSE(std::equal(first.begin() + 72, first.end(), second.begin() + 72));
}

/// Pixels of row 100, which crosses the colour bars, outside the moving bar; a bar is 82 pixels wide.
struct Bar {
    std::size_t column;
    std::uint8_t red, green, blue;
};
constexpr Bar kBars[] = {{123, 255, 255, 0}, {205, 0, 255, 255}, {287, 0, 255, 0}, {369, 255, 0, 255},
                         {451, 255, 0, 0},   {533, 0, 0, 255},   {615, 0, 0, 0}};

TEST_F(Picture, ShowsColourBarsInRgbAndBgr) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "PixelFormat", "RGB8Packed");
    Bytes bytes = pictureOf(camera, kColourCamera);
    for (const Bar& bar : kBars) {
        const std::uint8_t* pixel = &bytes[(100 * 656 + bar.column) * 3];
        EXPECT_EQ(pixel[0], bar.red);
        EXPECT_EQ(pixel[1], bar.green);
        EXPECT_EQ(pixel[2], bar.blue);
    }
    setEnum(camera, "PixelFormat", "BGR8Packed");
    bytes = pictureOf(camera, kColourCamera);
    EXPECT_EQ(bytes[(100 * 656 + 451) * 3], 0);
    EXPECT_EQ(bytes[(100 * 656 + 451) * 3 + 2], 255);
}

// Luminance 0.299 R + 0.587 G + 0.114 B; differences 0.564 (B - Y) and 0.713 (R - Y) around 128.
TEST_F(Picture, ShowsTheSameBarsAsLuminanceAndDifferences) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "PixelFormat", "YUV422Packed");
    const Bytes yuv = pictureOf(camera, kColourCamera);
    setEnum(camera, "PixelFormat", "Mono8");
    const Bytes grey = pictureOf(camera, kColourCamera);
    for (const Bar& bar : kBars) {
        const double y = 0.299 * bar.red + 0.587 * bar.green + 0.114 * bar.blue;
        const std::uint8_t* pair = &yuv[(100 * 656 + bar.column / 2 * 2) * 2];
        EXPECT_NEAR(pair[0], std::min(255.0, 128 + 0.564 * (bar.blue - y)), 2);
        EXPECT_NEAR(pair[1], y, 2);
        EXPECT_NEAR(pair[2], std::min(255.0, 128 + 0.713 * (bar.red - y)), 2);
        EXPECT_NEAR(pair[3], y, 2);
        EXPECT_NEAR(grey[100 * 656 + bar.column], y, 2);
    }
}

TEST_F(Picture, ShowsTheBarsThroughTheColourFilters) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "PixelFormat", "BayerRG8");
    const Bytes bytes = pictureOf(camera, kColourCamera);
    // The yellow bar: red and green pixels are lit, blue ones are not.
    EXPECT_EQ(bytes[100 * 656 + 122], 255);
    EXPECT_EQ(bytes[100 * 656 + 123], 255);
    EXPECT_EQ(bytes[101 * 656 + 122], 255);
    EXPECT_EQ(bytes[101 * 656 + 123], 0);
}

TEST_F(Picture, ShowsAGradientBelow) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "PixelFormat", "Mono8");
    const Bytes bytes = pictureOf(camera, kColourCamera);
    const std::uint8_t* row = &bytes[480 * 656];
    for (std::size_t x = 101; x < 656; ++x) EXPECT_GE(row[x], row[x - 1]);
    EXPECT_LT(row[100], 50);
    EXPECT_GT(row[655], 250);
}

TEST_F(Picture, ShowsABarThatMovesFourPixelsPerFrame) {
    const VmbHandle_t camera = openFast();
    setEnum(camera, "PixelFormat", "Mono8");
    for (const std::uint64_t frame : {3u, 4u}) {
        const Bytes bytes = pictureOf(camera, kColourCamera, frame);
        // In the gradient, which is dark on the left: eight white pixels, then eight black ones.
        const std::uint8_t* row = &bytes[470 * 656];
        const auto x = static_cast<std::size_t>(frame * 4);
        EXPECT_LT(row[x - 1], 20);
        EXPECT_THAT(Bytes(row + x, row + x + 8), Each(255));
        EXPECT_THAT(Bytes(row + x + 8, row + x + 16), Each(0));
    }
}

TEST_F(Picture, MonoOfTwelveBitsIsLittleEndian) {
    const VmbHandle_t camera = openFast(kMonochromeCamera);
    setEnum(camera, "PixelFormat", "Mono12");
    const Bytes bytes = pictureOf(camera, kMonochromeCamera);
    const std::uint8_t* white = &bytes[(100 * 656 + 50) * 2];
    EXPECT_EQ(white[0], 0xF0);
    EXPECT_EQ(white[1], 0x0F);
}

}  // namespace
