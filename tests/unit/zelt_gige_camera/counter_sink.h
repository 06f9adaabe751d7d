#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "if_channel_sink.h"

namespace test_support {

/// Reads a counter channel's samples: time and count.
class CounterSink final : public zelt::IfChannelSink {
  public:
    void addSample(std::int64_t time, const void* data, std::uint64_t size) override {
        std::uint64_t count = 0;
        for (std::uint64_t i = 0; i < size; ++i) {
            count |= std::uint64_t{static_cast<const unsigned char*>(data)[i]} << (8 * i);
        }
        samples.emplace_back(time, count);
    }
    std::vector<std::pair<std::int64_t, std::uint64_t>> samples;
};

}  // namespace test_support
