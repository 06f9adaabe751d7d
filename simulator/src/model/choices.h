/// What the vendor's interface leaves open and a test may want either way. [any thread]
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "result.h"

namespace simulator {

/// The options of each, the first of which holds unless another is chosen.
enum class Choice : std::uint32_t {
    FrameIdAfterRestart,  ///< of capture: at 1 again; goes on
    FrameIdWidth,         ///< 64 bits; 16 bits, from 65535 to 1
    QueueBeforeStart,     ///< of capture: accepted; refused
    RepeatedStartup,      ///< success, one shutdown ends it; counted; refused
    SetInCallback,  ///< refused in frame callbacks and for the invalidated feature; in frame callbacks; never
};

class Choices {
  public:
    /// NotFound for an unknown choice, InvalidValue for an option that it does not have.
    Result choose(Choice choice, std::uint32_t option);
    void reset();
    std::uint32_t option(Choice choice) const { return m_options[static_cast<std::size_t>(choice)].load(); }

  private:
    static constexpr std::array<std::uint32_t, 5> kOptionCounts = {2, 2, 2, 3, 3};

    std::array<std::atomic<std::uint32_t>, kOptionCounts.size()> m_options{};
};

}  // namespace simulator
