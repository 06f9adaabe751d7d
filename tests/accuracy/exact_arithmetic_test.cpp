// The line that judges all others, against the same in rational arithmetic.
#include <cmath>

#include <gtest/gtest.h>

#include "running_fit_exact.h"
#include "window_fit.h"

namespace {

using test_support::ExactLine;
using test_support::exactPoint;
using test_support::kExactCameraStep;
using test_support::kExactLines;
using test_support::WindowFit;

TEST(TheModelsLine, IsThatOfRationalNumbersRoundedDown) {
    int compared = 0;
    for (const ExactLine& exact : kExactLines) {
        // Over days the window is what makes the difference, not the arithmetic.
        if (exact.points > 300) continue;
        WindowFit line;
        std::int64_t camera = 0;
        for (int index = 0; index < exact.points; ++index) {
            const auto point = exactPoint(exact, index);
            camera = point.camera;
            line.add(static_cast<std::uint64_t>(camera), point.host, point.quality);
        }
        for (const int seconds : {0, 1, -10}) {
            const std::int64_t ahead = seconds * kExactCameraStep;
            const long double expected =
                static_cast<long double>(exact.slope) * static_cast<long double>(ahead) +
                static_cast<long double>(exact.atNewestFraction);
            const std::int64_t found = line.at(static_cast<std::uint64_t>(camera + ahead)) -
                                       static_cast<std::int64_t>(exact.atNewest);
            // The table's slope is a double: 1e-6 of a nanosecond after ten seconds.
            EXPECT_NEAR(static_cast<double>(static_cast<long double>(found) + 0.5L - expected), 0.0,
                        0.5 + 1e-5)
                << exact.camera << ' ' << exact.host << ' ' << exact.points << ' ' << ahead;
            ++compared;
        }
    }
    EXPECT_EQ(compared, 3 * 18);
}

}  // namespace
