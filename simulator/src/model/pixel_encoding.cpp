#include <algorithm>
#include <cstddef>
#include <string_view>

#include "test_picture.h"

namespace simulator {
namespace {

/// How the samples of a row lie in memory.
enum class Packing {
    Bytes,
    Words,   ///< 16 bits each, the low byte first, the value in the low bits
    Packed,  ///< two of 12 bits in three bytes: high bits, both low halves, high bits
    Bits,    ///< one behind the other, the lowest bit first
};

/// A format is a group of pixels and the samples that stand for it: a component and the pixel of the group
/// that it is taken from. Components: R, G, B, A; Y luminance, U and V differences to blue and red.
struct PixelFormat {
    std::uint32_t number;
    Packing packing;
    unsigned depth;
    std::size_t pixels;
    std::string_view evenRow;
    std::string_view oddRow;
};

constexpr std::string_view kGrey = "Y0";
constexpr std::string_view kRgb = "R0G0B0";
constexpr std::string_view kBgr = "B0G0R0";
constexpr std::string_view kRgba = "R0G0B0A0";
constexpr std::string_view kBgra = "B0G0R0A0";
constexpr std::string_view kRedGreen = "R0G1";
constexpr std::string_view kGreenBlue = "G0B1";
constexpr std::string_view kGreenRed = "G0R1";
constexpr std::string_view kBlueGreen = "B0G1";

constexpr PixelFormat mono(std::uint32_t number, Packing packing, unsigned depth) {
    return {number, packing, depth, 1, kGrey, kGrey};
}
constexpr PixelFormat colour(std::uint32_t number, unsigned depth, std::string_view samples) {
    return {number, depth == 8 ? Packing::Bytes : Packing::Words, depth, 1, samples, samples};
}
constexpr PixelFormat group(std::uint32_t number, std::size_t pixels, std::string_view samples) {
    return {number, Packing::Bytes, 8, pixels, samples, samples};
}
// By the colours of the first row.
constexpr PixelFormat bayerGr(std::uint32_t number, Packing packing, unsigned depth) {
    return {number, packing, depth, 2, kGreenRed, kBlueGreen};
}
constexpr PixelFormat bayerRg(std::uint32_t number, Packing packing, unsigned depth) {
    return {number, packing, depth, 2, kRedGreen, kGreenBlue};
}
constexpr PixelFormat bayerGb(std::uint32_t number, Packing packing, unsigned depth) {
    return {number, packing, depth, 2, kGreenBlue, kRedGreen};
}
constexpr PixelFormat bayerBg(std::uint32_t number, Packing packing, unsigned depth) {
    return {number, packing, depth, 2, kBlueGreen, kGreenRed};
}

constexpr PixelFormat kFormats[] = {
    mono(0x01080001, Packing::Bytes, 8),
    mono(0x01100003, Packing::Words, 10),
    mono(0x01100005, Packing::Words, 12),
    mono(0x010C0006, Packing::Packed, 12),
    mono(0x01100025, Packing::Words, 14),
    mono(0x01100007, Packing::Words, 16),
    mono(0x010A0046, Packing::Bits, 10),
    mono(0x010C0047, Packing::Bits, 12),
    bayerGr(0x01080008, Packing::Bytes, 8),
    bayerRg(0x01080009, Packing::Bytes, 8),
    bayerGb(0x0108000A, Packing::Bytes, 8),
    bayerBg(0x0108000B, Packing::Bytes, 8),
    bayerGr(0x0110000C, Packing::Words, 10),
    bayerRg(0x0110000D, Packing::Words, 10),
    bayerGb(0x0110000E, Packing::Words, 10),
    bayerBg(0x0110000F, Packing::Words, 10),
    bayerGr(0x01100010, Packing::Words, 12),
    bayerRg(0x01100011, Packing::Words, 12),
    bayerGb(0x01100012, Packing::Words, 12),
    bayerBg(0x01100013, Packing::Words, 12),
    bayerGr(0x010C002A, Packing::Packed, 12),
    bayerRg(0x010C002B, Packing::Packed, 12),
    bayerGb(0x010C002C, Packing::Packed, 12),
    bayerBg(0x010C002D, Packing::Packed, 12),
    bayerGr(0x0110002E, Packing::Words, 16),
    bayerRg(0x0110002F, Packing::Words, 16),
    bayerGb(0x01100030, Packing::Words, 16),
    bayerBg(0x01100031, Packing::Words, 16),
    bayerGr(0x010A0056, Packing::Bits, 10),
    bayerRg(0x010A0058, Packing::Bits, 10),
    bayerGb(0x010A0054, Packing::Bits, 10),
    bayerBg(0x010A0052, Packing::Bits, 10),
    bayerGr(0x010C0057, Packing::Bits, 12),
    bayerRg(0x010C0059, Packing::Bits, 12),
    bayerGb(0x010C0055, Packing::Bits, 12),
    bayerBg(0x010C0053, Packing::Bits, 12),
    colour(0x02180014, 8, kRgb),
    colour(0x02180015, 8, kBgr),
    colour(0x02200016, 8, kRgba),
    colour(0x02200017, 8, kBgra),
    colour(0x02300018, 10, kRgb),
    colour(0x02300019, 10, kBgr),
    colour(0x0230001A, 12, kRgb),
    colour(0x0230001B, 12, kBgr),
    colour(0x0230005E, 14, kRgb),
    colour(0x0230004A, 14, kBgr),
    colour(0x02300033, 16, kRgb),
    colour(0x0230004B, 16, kBgr),
    colour(0x0240005F, 10, kRgba),
    colour(0x0240004C, 10, kBgra),
    colour(0x02400061, 12, kRgba),
    colour(0x0240004E, 12, kBgra),
    colour(0x02400063, 14, kRgba),
    colour(0x02400050, 14, kBgra),
    colour(0x02400064, 16, kRgba),
    colour(0x02400051, 16, kBgra),
    group(0x020C001E, 4, "U0Y0Y1V0Y2Y3"),
    group(0x0210001F, 2, "U0Y0V0Y1"),
    group(0x02180020, 1, "U0Y0V0"),
    group(0x020C003C, 4, "Y0Y1U0Y2Y3V0"),
    group(0x02100043, 2, "Y0U0Y1V0"),
    group(0x0218003A, 1, "Y0U0V0"),
};

const PixelFormat& formatOf(std::uint32_t number) {
    const auto* found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                     [=](const PixelFormat& format) { return format.number == number; });
    // A forced format may be anything; its picture is grey.
    return found != std::end(kFormats) ? *found : kFormats[0];
}

unsigned clamped(int value) {
    return static_cast<unsigned>(std::clamp(value, 0, 255));
}

// Full-range luminance and colour differences with the weights of standard-definition television.
unsigned component(char kind, const Colour& c) {
    switch (kind) {
        case 'R':
            return c.red;
        case 'G':
            return c.green;
        case 'B':
            return c.blue;
        case 'U':
            return clamped((128 * c.blue - 43 * c.red - 85 * c.green) / 256 + 128);
        case 'V':
            return clamped((128 * c.red - 107 * c.green - 21 * c.blue) / 256 + 128);
        case 'Y':
            return clamped((77 * c.red + 150 * c.green + 29 * c.blue + 128) / 256);
        default:
            return 255;
    }
}

std::vector<unsigned> samplesOf(const PixelFormat& format, const std::vector<Colour>& pixels,
                                std::uint32_t y) {
    const std::string_view samples = y % 2 == 0 ? format.evenRow : format.oddRow;
    std::vector<unsigned> row;
    for (std::size_t x = 0; x < pixels.size(); x += format.pixels) {
        for (std::size_t i = 0; i < samples.size(); i += 2) {
            const std::size_t from = x + static_cast<std::size_t>(samples[i + 1] - '0');
            if (from < pixels.size())
                row.push_back(component(samples[i], pixels[from]) << (format.depth - 8));
        }
    }
    return row;
}

std::uint8_t low(unsigned bits) {
    return static_cast<std::uint8_t>(bits & 0xFF);
}

void appendPacked(std::vector<std::uint8_t>& row, const std::vector<unsigned>& samples) {
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        const unsigned second = i + 1 < samples.size() ? samples[i + 1] : 0;
        row.insert(row.end(),
                   {low(samples[i] >> 4), low((second & 0xF) << 4 | (samples[i] & 0xF)), low(second >> 4)});
    }
}

void appendBits(std::vector<std::uint8_t>& row, const std::vector<unsigned>& samples, unsigned depth) {
    unsigned waiting = 0;
    unsigned count = 0;
    for (const unsigned sample : samples) {
        waiting |= sample << count;
        for (count += depth; count >= 8; count -= 8, waiting >>= 8) row.push_back(low(waiting));
    }
    if (count > 0) row.push_back(low(waiting));
}

}  // namespace

std::vector<std::uint8_t> encodeRow(std::uint32_t format, const std::vector<Colour>& pixels,
                                    std::uint32_t y) {
    const PixelFormat& known = formatOf(format);
    const std::vector<unsigned> samples = samplesOf(known, pixels, y);
    std::vector<std::uint8_t> row;
    switch (known.packing) {
        case Packing::Bytes:
            for (const unsigned sample : samples) row.push_back(low(sample));
            break;
        case Packing::Words:
            for (const unsigned sample : samples) row.insert(row.end(), {low(sample), low(sample >> 8)});
            break;
        case Packing::Packed:
            appendPacked(row, samples);
            break;
        case Packing::Bits:
            appendBits(row, samples, known.depth);
            break;
    }
    // Pixels that fill no group of their format, and formats that are not told apart above.
    row.resize(pixels.size() * (format >> 16 & 0xFF) / 8);
    return row;
}

}  // namespace simulator
