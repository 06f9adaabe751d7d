#pragma once

#include <cstdint>
#include <optional>

namespace host {

/// Follows the numbers that a camera gives its frames. They rise by one; 16-bit ones go on with 1 behind
/// 65535. A lower number is a frame that came again or late, unless the next one follows on from it: then
/// the camera began to count anew. [one thread]
class FrameNumbers {
  public:
    /// Takes the number of the next frame. Returns how many are missing before it; empty for the first one
    /// and for a lower number.
    std::optional<std::uint64_t> add(std::uint64_t number);

    /// Frames with a number that was there already.
    std::uint64_t doubled() const { return m_doubled; }
    /// How often the camera began to count anew; what was lost there no number tells.
    std::uint64_t restarts() const { return m_restarts; }

  private:
    std::optional<std::uint64_t> m_last;
    std::optional<std::uint64_t> m_lower;
    std::uint64_t m_doubled = 0;
    std::uint64_t m_restarts = 0;
};

}  // namespace host
