/// The moving test picture: colour bars above, a gradient below, a white and black bar that wanders to the
/// right and the frame number in digits. Drawn from rows prepared per geometry, so that a frame costs little
/// more than copying it.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "frame_stamp.h"
#include "sensor.h"

namespace simulator {

/// One pixel before it is put into a camera's format.
struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

/// Puts a row of pixels into a format. Rows of the Bayer formats differ by the parity of `y`.
std::vector<std::uint8_t> encodeRow(std::uint32_t format, const std::vector<Colour>& pixels, std::uint32_t y);

/// Not synchronised; memory is allocated only when the shape changes.
class TestPicture {
  public:
    /// Draws shape.payload() bytes and stamps them with `stamp`.
    void draw(const PictureShape& shape, const FrameStamp& stamp, std::uint8_t* image);

  private:
    enum Rows { kBars, kGradient, kWhite, kBlack, kRowKinds };

    void prepare(const PictureShape& shape);
    void background(std::uint8_t* image) const;
    void fill(std::uint8_t* image, Rows kind, std::uint32_t x, std::uint32_t y, std::uint32_t width,
              std::uint32_t height) const;
    void digits(std::uint8_t* image, std::uint64_t number) const;
    const std::uint8_t* row(Rows kind, std::uint32_t y) const { return m_rows[kind][y % 2].data(); }
    std::size_t bytes(std::uint32_t pixels) const { return pixels * m_shape.bitsPerPixel() / 8; }

    PictureShape m_shape;
    std::array<std::array<std::vector<std::uint8_t>, 2>, kRowKinds> m_rows;
};

}  // namespace simulator
