/// Frame formats by FourCC code.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace zelt_gige_camera {

struct FourCcFormat {
    std::uint32_t
        code;  ///< the name's characters, lowest byte first; a three-letter name ends in a zero byte
    std::uint32_t bitsPerPixel;
    std::uint32_t packed;       ///< 0 for the planar formats
    std::uint32_t yuvFamily;    ///< 1 for luminance and luminance-chrominance formats
    std::uint32_t subsampling;  ///< 2 where colour is subsampled
    std::uint32_t planes;       ///< 2 for the planar formats
};

/// All known formats, ordered by code.
const std::array<FourCcFormat, 9>& fourCcFormats();

/// Code of a format's name, upper and lower case alike. Throws std::invalid_argument "fourcc invalid".
std::uint32_t fourCcCode(std::string_view text);

/// Format of a code. Throws std::invalid_argument "Unsupported FourCC format".
const FourCcFormat& fourCcFormat(std::uint32_t code);

/// Name of a code: its bytes up to the first zero byte.
std::string fourCcText(std::uint32_t code);

/// A camera's "PixelFormat" entry and the frame format it stands for.
struct PixelFormatName {
    const char* cameraEntry;
    const char* fourCc;
};

/// The entries that the system can use, the preferred one first.
const std::array<PixelFormatName, 3>& pixelFormatNames();

/// Bytes of one frame; 0 when the format is not known. `fourCc`: the format's name.
std::uint64_t framePayload(std::string_view fourCc, std::uint32_t width, std::uint32_t height);

}  // namespace zelt_gige_camera
