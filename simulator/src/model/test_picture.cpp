#include "test_picture.h"

#include <algorithm>
#include <cstring>

namespace simulator {
namespace {

constexpr Colour kBarColours[] = {{255, 255, 255}, {255, 255, 0}, {0, 255, 255}, {0, 255, 0},
                                  {255, 0, 255},   {255, 0, 0},   {0, 0, 255},   {0, 0, 0}};
// Everything that moves or is written starts and ends here, since some formats group four pixels.
constexpr std::uint32_t kGroup = 4;
constexpr std::uint32_t kBarWidth = 16;
constexpr std::uint32_t kBarStep = 4;

constexpr std::uint32_t kGlyphWidth = 5;
constexpr std::uint32_t kGlyphHeight = 7;
// Rows from above, the leftmost pixel in bit 4.
constexpr std::uint8_t kGlyphs[10][kGlyphHeight] = {
    {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}, {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}, {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E},
    {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}, {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
    {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}, {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}, {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C}};

}  // namespace

void TestPicture::draw(const PictureShape& shape, const FrameStamp& stamp, std::uint8_t* image) {
    if (!(shape == m_shape) || m_rows[kBars][0].empty()) prepare(shape);
    background(image);
    const std::uint32_t grid = shape.width / kGroup * kGroup;
    if (grid > kBarWidth) {
        const auto x = static_cast<std::uint32_t>(stamp.frameId * kBarStep % (grid - kBarWidth));
        fill(image, kWhite, x, 0, kBarWidth / 2, shape.height);
        fill(image, kBlack, x + kBarWidth / 2, 0, kBarWidth / 2, shape.height);
    }
    digits(image, stamp.frameId);
    writeStamp(image, shape.payload(), stamp);
}

void TestPicture::prepare(const PictureShape& shape) {
    m_shape = shape;
    std::vector<Colour> bars(shape.width);
    std::vector<Colour> gradient(shape.width);
    for (std::uint32_t x = 0; x < shape.width; ++x) {
        bars[x] = kBarColours[x * 8ULL / shape.width];
        const auto grey = static_cast<std::uint8_t>(x * 255ULL / shape.width);
        gradient[x] = {grey, grey, grey};
    }
    const std::vector<Colour> white(shape.width, {255, 255, 255});
    const std::vector<Colour> black(shape.width, {0, 0, 0});
    for (std::uint32_t parity = 0; parity < 2; ++parity) {
        m_rows[kBars][parity] = encodeRow(shape.format, bars, parity);
        m_rows[kGradient][parity] = encodeRow(shape.format, gradient, parity);
        m_rows[kWhite][parity] = encodeRow(shape.format, white, parity);
        m_rows[kBlack][parity] = encodeRow(shape.format, black, parity);
    }
}

void TestPicture::background(std::uint8_t* image) const {
    const std::uint32_t border = m_shape.height * 2 / 3;
    const std::uint64_t payload = m_shape.payload();
    // A forced width need not fill whole groups; the rows then follow each other without a gap.
    const std::uint64_t stride = std::max<std::uint64_t>(1, bytes(m_shape.width));
    for (std::uint32_t y = 0; y < m_shape.height && y * stride < payload; ++y) {
        std::memcpy(image + y * stride, row(y < border ? kBars : kGradient, y),
                    std::min(stride, payload - y * stride));
    }
    const std::uint64_t drawn = std::min(payload, stride * m_shape.height);
    std::memset(image + drawn, 0, payload - drawn);
}

void TestPicture::fill(std::uint8_t* image, Rows kind, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                       std::uint32_t height) const {
    const std::size_t stride = bytes(m_shape.width);
    const std::size_t from = bytes(x);
    for (std::uint32_t line = y; line < y + height; ++line) {
        std::memcpy(image + line * stride + from, row(kind, line) + from, bytes(width));
    }
}

void TestPicture::digits(std::uint8_t* image, std::uint64_t number) const {
    const std::uint32_t cell = m_shape.width / 80 / kGroup * kGroup;
    const std::uint32_t top = m_shape.height * 3 / 4;
    if (cell == 0 || top + kGlyphHeight * cell > m_shape.height) return;
    std::uint8_t text[20];
    std::size_t length = 0;
    for (; length < sizeof text && (number != 0 || length == 0); number /= 10) {
        text[length++] = static_cast<std::uint8_t>(number % 10);
    }
    std::uint32_t x = 2 * cell;
    for (; length > 0 && x + kGlyphWidth * cell <= m_shape.width; x += (kGlyphWidth + 1) * cell) {
        const auto& glyph = kGlyphs[text[--length]];
        for (std::uint32_t line = 0; line < kGlyphHeight; ++line) {
            for (std::uint32_t column = 0; column < kGlyphWidth; ++column) {
                const bool ink = (glyph[line] >> (kGlyphWidth - 1 - column) & 1) != 0;
                fill(image, ink ? kWhite : kBlack, x + column * cell, top + line * cell, cell, cell);
            }
        }
    }
}

}  // namespace simulator
