// Rows of pixels in every format, worked out by hand.
#include <array>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "test_picture.h"

namespace {

using simulator::Colour;
using Bytes = std::vector<int>;

// Luminance 124, 98, 0, 255; difference to blue 75, 129, 128, 128; to red 47, 236, 128, 128.
const std::vector<Colour> kPixels = {{10, 200, 30}, {250, 20, 100}, {0, 0, 0}, {255, 255, 255}};
const Bytes kGrey = {124, 98, 0, 255};
const std::array<Bytes, 2> kGreenRed = {Bytes{200, 250, 0, 255}, Bytes{30, 20, 0, 255}};
const std::array<Bytes, 2> kRedGreen = {Bytes{10, 20, 0, 255}, Bytes{200, 100, 0, 255}};
const std::array<Bytes, 2> kGreenBlue = {Bytes{200, 100, 0, 255}, Bytes{10, 20, 0, 255}};
const std::array<Bytes, 2> kBlueGreen = {Bytes{30, 20, 0, 255}, Bytes{200, 250, 0, 255}};
const Bytes kRgb = {10, 200, 30, 250, 20, 100, 0, 0, 0, 255, 255, 255};
const Bytes kBgr = {30, 200, 10, 100, 20, 250, 0, 0, 0, 255, 255, 255};
const Bytes kRgba = {10, 200, 30, 255, 250, 20, 100, 255, 0, 0, 0, 255, 255, 255, 255, 255};
const Bytes kBgra = {30, 200, 10, 255, 100, 20, 250, 255, 0, 0, 0, 255, 255, 255, 255, 255};

/// 16-bit numbers of `bits` significant ones, the low byte first.
Bytes words(const Bytes& samples, int bits) {
    Bytes bytes;
    for (const int sample : samples) {
        const int word = sample * (1 << (bits - 8));
        bytes.push_back(word % 256);
        bytes.push_back(word / 256);
    }
    return bytes;
}

/// Two samples in three bytes; their four low bits are zero, so the byte between them is.
Bytes packed(const Bytes& samples) {
    return {samples[0], 0, samples[1], samples[2], 0, samples[3]};
}

/// One number of all the bits, the first sample lowest, cut into bytes from below.
Bytes bits(const Bytes& samples, int depth) {
    unsigned long long all = 0;
    for (std::size_t i = samples.size(); i-- > 0;) {
        all = (all << depth) + (static_cast<unsigned long long>(samples[i]) << (depth - 8));
    }
    Bytes bytes;
    for (int i = 0; i < 4 * depth / 8; ++i, all /= 256) bytes.push_back(static_cast<int>(all % 256));
    return bytes;
}

struct Format {
    const char* name;
    std::uint32_t number;
    Bytes even;
    Bytes odd;
};

Format alike(const char* name, std::uint32_t number, const Bytes& row) {
    return {name, number, row, row};
}

template <typename Encode>
Format bayer(const char* name, std::uint32_t number, const std::array<Bytes, 2>& rows, Encode encode) {
    return {name, number, encode(rows[0]), encode(rows[1])};
}

std::vector<Format> greyFormats() {
    return {alike("Mono8", 0x01080001, kGrey),
            alike("Mono10", 0x01100003, words(kGrey, 10)),
            alike("Mono12", 0x01100005, words(kGrey, 12)),
            alike("Mono12Packed", 0x010C0006, packed(kGrey)),
            alike("Mono14", 0x01100025, words(kGrey, 14)),
            alike("Mono16", 0x01100007, words(kGrey, 16)),
            alike("Mono10p", 0x010A0046, bits(kGrey, 10)),
            alike("Mono12p", 0x010C0047, bits(kGrey, 12))};
}

std::vector<Format> bayerFormats() {
    struct Order {
        const char* name;
        std::array<Bytes, 2> rows;
        std::array<std::uint32_t, 7> numbers;
    };
    const std::vector<Order> orders = {
        {"BayerGR",
         kGreenRed,
         {0x01080008, 0x0110000C, 0x01100010, 0x010C002A, 0x0110002E, 0x010A0056, 0x010C0057}},
        {"BayerRG",
         kRedGreen,
         {0x01080009, 0x0110000D, 0x01100011, 0x010C002B, 0x0110002F, 0x010A0058, 0x010C0059}},
        {"BayerGB",
         kGreenBlue,
         {0x0108000A, 0x0110000E, 0x01100012, 0x010C002C, 0x01100030, 0x010A0054, 0x010C0055}},
        {"BayerBG",
         kBlueGreen,
         {0x0108000B, 0x0110000F, 0x01100013, 0x010C002D, 0x01100031, 0x010A0052, 0x010C0053}}};
    std::vector<Format> formats;
    for (const Order& order : orders) {
        const auto add = [&](std::size_t which, auto encode) {
            formats.push_back(bayer(order.name, order.numbers[which], order.rows, encode));
        };
        add(0, [](const Bytes& row) { return row; });
        add(1, [](const Bytes& row) { return words(row, 10); });
        add(2, [](const Bytes& row) { return words(row, 12); });
        add(3, packed);
        add(4, [](const Bytes& row) { return words(row, 16); });
        add(5, [](const Bytes& row) { return bits(row, 10); });
        add(6, [](const Bytes& row) { return bits(row, 12); });
    }
    return formats;
}

std::vector<Format> colourFormats() {
    return {alike("RGB8Packed", 0x02180014, kRgb),
            alike("BGR8Packed", 0x02180015, kBgr),
            alike("RGBA8Packed", 0x02200016, kRgba),
            alike("BGRA8Packed", 0x02200017, kBgra),
            alike("RGB10Packed", 0x02300018, words(kRgb, 10)),
            alike("RGB12Packed", 0x0230001A, words(kRgb, 12)),
            alike("BGR10", 0x02300019, words(kBgr, 10)),
            alike("BGR12", 0x0230001B, words(kBgr, 12)),
            alike("RGB14", 0x0230005E, words(kRgb, 14)),
            alike("BGR14", 0x0230004A, words(kBgr, 14)),
            alike("RGB16", 0x02300033, words(kRgb, 16)),
            alike("BGR16", 0x0230004B, words(kBgr, 16)),
            alike("RGBA10", 0x0240005F, words(kRgba, 10)),
            alike("BGRA10", 0x0240004C, words(kBgra, 10)),
            alike("RGBA12", 0x02400061, words(kRgba, 12)),
            alike("BGRA12", 0x0240004E, words(kBgra, 12)),
            alike("RGBA14", 0x02400063, words(kRgba, 14)),
            alike("BGRA14", 0x02400050, words(kBgra, 14)),
            alike("RGBA16", 0x02400064, words(kRgba, 16)),
            alike("BGRA16", 0x02400051, words(kBgra, 16)),
            alike("YUV411Packed", 0x020C001E, {75, 124, 98, 47, 0, 255}),
            alike("YUV422Packed", 0x0210001F, {75, 124, 47, 98, 128, 0, 128, 255}),
            alike("YUV444Packed", 0x02180020, {75, 124, 47, 129, 98, 236, 128, 0, 128, 128, 255, 128}),
            alike("YCbCr411_8", 0x020C003C, {124, 98, 75, 0, 255, 47}),
            alike("YCbCr422_8", 0x02100043, {124, 75, 98, 47, 0, 128, 255, 128}),
            alike("YCbCr8", 0x0218003A, {124, 75, 47, 98, 129, 236, 0, 128, 128, 255, 128, 128})};
}

class PixelFormats : public ::testing::TestWithParam<Format> {};

TEST_P(PixelFormats, EncodeRowsOfBothParities) {
    const auto row = [](std::uint32_t y) {
        const std::vector<std::uint8_t> bytes = simulator::encodeRow(GetParam().number, kPixels, y);
        return Bytes(bytes.begin(), bytes.end());
    };
    EXPECT_THAT(row(0), ::testing::ElementsAreArray(GetParam().even));
    EXPECT_THAT(row(1), ::testing::ElementsAreArray(GetParam().odd));
    EXPECT_EQ(row(2), row(0));
}

std::string nameOf(const ::testing::TestParamInfo<Format>& info) {
    std::ostringstream number;
    number << std::hex << info.param.number;
    return std::string(info.param.name) + "_" + number.str();
}

INSTANTIATE_TEST_SUITE_P(Grey, PixelFormats, ::testing::ValuesIn(greyFormats()), nameOf);
INSTANTIATE_TEST_SUITE_P(Bayer, PixelFormats, ::testing::ValuesIn(bayerFormats()), nameOf);
INSTANTIATE_TEST_SUITE_P(Colour, PixelFormats, ::testing::ValuesIn(colourFormats()), nameOf);

TEST(PixelFormatOfNobody, IsGreyInItsSize) {
    EXPECT_THAT(simulator::encodeRow(0x01180FFF, kPixels, 0),
                ::testing::ElementsAre(124, 98, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(PixelFormatOfGroups, EncodesAnOddRowAsFarAsItGoes) {
    const std::vector<Colour> three(kPixels.begin(), kPixels.begin() + 3);
    EXPECT_THAT(simulator::encodeRow(0x01080009, three, 0), ::testing::ElementsAre(10, 20, 0));
    // 12 bits each: the last pixel's low half would be in a fifth byte.
    EXPECT_THAT(simulator::encodeRow(0x010C0006, three, 0), ::testing::ElementsAre(124, 0, 98, 0));
}

}  // namespace
