#include "png_file.h"

#include <png.h>

namespace host {

bool writePng(const std::filesystem::path& file, const RgbPicture& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_RGB;
    const bool written =
        png_image_write_to_file(&image, file.string().c_str(), 0, picture.bytes.data(), 0, nullptr) != 0;
    png_image_free(&image);
    std::error_code ignored;
    if (!written) std::filesystem::remove(file, ignored);
    return written;
}

}  // namespace host
