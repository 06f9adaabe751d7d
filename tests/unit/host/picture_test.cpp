#include "picture.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <png.h>

#include "png_file.h"
#include "temporary_directory.h"

using host::RgbPicture;

namespace {

using Bytes = std::vector<std::uint8_t>;

std::optional<RgbPicture> convert(const char* format, std::uint32_t width, std::uint32_t height,
                                  const Bytes& bytes) {
    return host::toRgb(format, width, height, std::as_bytes(std::span(bytes)));
}

TEST(Picture, RepeatsGreyInAllThreeColours) {
    EXPECT_EQ(convert("Y800", 2, 1, {0, 200})->bytes, (Bytes{0, 0, 0, 200, 200, 200}));
}

TEST(Picture, KeepsRgb) {
    const auto picture = convert("RGB", 1, 2, {1, 2, 3, 4, 5, 6});
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 1u);
    EXPECT_EQ(picture->height, 2u);
    EXPECT_EQ(picture->bytes, (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(Picture, SharesTheColourOfTwoYuvPixels) {
    // U 128 and V 128 are no colour.
    EXPECT_EQ(convert("Y422", 2, 1, {128, 50, 128, 60})->bytes, (Bytes{50, 50, 50, 60, 60, 60}));
}

TEST(Picture, ConvertsYuvByTheStandardMatrix) {
    // U - 128 = -28, V - 128 = 72. Red: 100 + 1.402 * 72 = 200.944, green: 100 + 0.344136 * 28 - 0.714136 *
    // 72 = 58.218, blue: 100 - 1.772 * 28 = 50.384; the second pixel is 20 brighter.
    EXPECT_EQ(convert("Y422", 2, 1, {100, 100, 200, 120})->bytes, (Bytes{201, 58, 50, 221, 78, 70}));
}

TEST(Picture, CutsYuvAtBlackAndWhite) {
    // Red 255 + 1.402 * 127, blue 255 + 1.772 * 127; green 255 - 0.344136 * 127 - 0.714136 * 127 = 120.6.
    // With Y 0, U and V 0: red and blue below 0, green 1.058272 * 128 = 135.5.
    EXPECT_EQ(convert("Y422", 2, 1, {255, 255, 255, 255})->bytes, (Bytes{255, 121, 255, 255, 121, 255}));
    EXPECT_EQ(convert("Y422", 2, 1, {0, 0, 0, 0})->bytes, (Bytes{0, 135, 0, 0, 135, 0}));
}

TEST(Picture, ConvertsAnOddLastYuvPixel) {
    EXPECT_EQ(convert("Y422", 1, 1, {128, 77})->bytes, (Bytes{77, 77, 77}));
}

TEST(Picture, IgnoresBytesBehindThePicture) {
    EXPECT_EQ(convert("Y800", 1, 1, {9, 8, 7})->bytes, (Bytes{9, 9, 9}));
}

TEST(Picture, HasNoneOfAnUnknownFormatOrTooFewBytes) {
    EXPECT_FALSE(convert("I420", 1, 1, {1, 2, 3}));
    EXPECT_FALSE(convert("Y800", 2, 2, {1, 2, 3}));
    EXPECT_FALSE(convert("Y422", 2, 1, {1, 2, 3}));
    EXPECT_FALSE(convert("RGB", 1, 1, {1, 2}));
    EXPECT_FALSE(convert("Y800", 0, 5, {}));
}

TEST(PngFile, ReadsBackAsWritten) {
    const test_support::TemporaryDirectory directory;
    const RgbPicture picture{2, 1, {255, 0, 0, 1, 2, 3}};
    const auto file = directory.path() / "a.png";
    ASSERT_TRUE(host::writePng(file, picture));

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_file(&image, file.string().c_str()), 0);
    EXPECT_EQ(image.width, 2u);
    EXPECT_EQ(image.height, 1u);
    image.format = PNG_FORMAT_RGB;
    Bytes bytes(PNG_IMAGE_SIZE(image));
    ASSERT_NE(png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr), 0);
    EXPECT_EQ(bytes, picture.bytes);
}

TEST(PngFile, LeavesNothingBehindWhenItCannotBeWritten) {
    const test_support::TemporaryDirectory directory;
    EXPECT_FALSE(host::writePng(directory.path() / "none" / "a.png", {1, 1, {1, 2, 3}}));
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

}  // namespace
