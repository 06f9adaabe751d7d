#include "zelt_gige_fourcc.h"

#include <algorithm>
#include <stdexcept>

namespace zelt_gige_camera {
namespace {

constexpr std::uint32_t codeOf(std::string_view name) {
    std::uint32_t code = 0;
    for (std::size_t at = 0; at < name.size(); ++at) {
        code |= static_cast<std::uint32_t>(static_cast<unsigned char>(name[at])) << (8 * at);
    }
    return code;
}

constexpr std::array<FourCcFormat, 9> kFormats = [] {
    std::array<FourCcFormat, 9> formats{{
        {codeOf("RGB"), 24, 1, 0, 1, 1},
        {codeOf("BGR"), 24, 1, 0, 1, 1},
        {codeOf("RGBA"), 32, 1, 0, 1, 1},
        {codeOf("Y800"), 8, 1, 1, 1, 1},
        {codeOf("Y411"), 12, 1, 1, 2, 1},
        {codeOf("Y422"), 16, 1, 1, 2, 1},
        {codeOf("YUY2"), 16, 1, 1, 2, 1},
        {codeOf("I420"), 12, 0, 1, 2, 2},
        {codeOf("YV12"), 12, 0, 1, 2, 2},
    }};
    std::sort(formats.begin(), formats.end(),
              [](const FourCcFormat& a, const FourCcFormat& b) { return a.code < b.code; });
    return formats;
}();

constexpr std::array<PixelFormatName, 3> kPixelFormats{{
    {"YUV422Packed", "Y422"},
    {"RGB8Packed", "RGB"},
    {"Mono8", "Y800"},
}};

char upperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

const std::array<FourCcFormat, 9>& fourCcFormats() {
    return kFormats;
}

std::uint32_t fourCcCode(std::string_view text) {
    for (const FourCcFormat& format : kFormats) {
        const std::string name = fourCcText(format.code);
        if (std::equal(name.begin(), name.end(), text.begin(), text.end(),
                       [](char a, char b) { return upperCase(a) == upperCase(b); })) {
            return format.code;
        }
    }
    throw std::invalid_argument("fourcc invalid");
}

const FourCcFormat& fourCcFormat(std::uint32_t code) {
    for (const FourCcFormat& format : kFormats) {
        if (format.code == code) return format;
    }
    throw std::invalid_argument("Unsupported FourCC format");
}

std::string fourCcText(std::uint32_t code) {
    std::string text;
    for (; (code & 0xFFu) != 0; code >>= 8) text += static_cast<char>(code & 0xFFu);
    return text;
}

const std::array<PixelFormatName, 3>& pixelFormatNames() {
    return kPixelFormats;
}

std::uint64_t framePayload(std::string_view fourCc, std::uint32_t width, std::uint32_t height) {
    try {
        const std::uint64_t bits = fourCcFormat(fourCcCode(fourCc)).bitsPerPixel;
        return (bits * width * height) >> 3;
    } catch (const std::invalid_argument&) {
        return 0;
    }
}

}  // namespace zelt_gige_camera
