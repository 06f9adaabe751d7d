// A week of mixed use: recordings at fixed rates and on the trigger output, with frames lost, cables pulled
// and plugged, settings changed, channels switched off and the plug-in started anew. Its days last an hour,
// or ten minutes under the sanitizers; ZELT_TEST_FULL=1 gives them all their hours.
#include "full_run.h"
#include "sanitized.h"
#include "soak_fixture.h"

namespace {

using test_support::AssertionCapture;
using test_support::isFullRun;
using test_support::kSecond;
using test_support::Soak;
using test_support::SoakSums;
using ::testing::IsEmpty;

constexpr unsigned kDaysOfAWeek = 7;
/// What is made once, at first use, is made in the first two days.
constexpr unsigned kFirstDayToCompare = 2;
/// By so much one day may differ from another. The heap counts as held what its threads keep for later,
/// unless it is a sanitizer's. A loss of 16 bytes in each recording of a whole week is more.
constexpr std::size_t kRoom = ZELT_SANITIZED ? 2'048 : 16'384;

std::uint64_t dayLength() {
    if (isFullRun()) return 86'400 * kSecond;
    return (ZELT_SANITIZED ? 600 : 3'600) * kSecond;
}

void print(unsigned day, const SoakSums& sums, std::size_t bytes) {
    const auto number = [](std::uint64_t of) { return static_cast<unsigned long long>(of); };
    std::printf(
        "after day %u: %llu recordings, %llu frames, of them %llu delivered and %llu named as lost; %llu "
        "cables, %llu settings, %llu restarts; %zu bytes held\n",
        day, number(sums.recordings), number(sums.produced), number(sums.delivered), number(sums.lost),
        number(sums.cables), number(sums.settings), number(sums.restarts), bytes);
}

/// One host for the whole week.
class SoakHost final : public Soak {
  public:
    using Soak::bytesAtRest;
    using Soak::sums;
    using Soak::useUntil;

  private:
    void TestBody() override {}
};

/// A day goes on where the one before ended.
class SoakWeek : public ::testing::TestWithParam<unsigned> {
  public:
    static void SetUpTestSuite() { s_host = std::make_unique<SoakHost>(); }
    static void TearDownTestSuite() { s_host.reset(); }

  protected:
    static inline std::unique_ptr<SoakHost> s_host;
    static inline std::size_t s_held[kDaysOfAWeek] = {};
};

TEST_P(SoakWeek, LosesNeitherFramesNorMemoryOn) {
    const unsigned day = GetParam();
    const AssertionCapture assertions;
    s_host->useUntil((day + 1) * dayLength());
    s_held[day] = s_host->bytesAtRest();
    const SoakSums& sums = s_host->sums;
    print(day + 1, sums, s_held[day]);
    EXPECT_EQ(sums.delivered + sums.lost, sums.produced);
    EXPECT_GT(sums.lost, 0u);
    EXPECT_THAT(assertions.expressions(), IsEmpty());
    const std::size_t before = s_held[kFirstDayToCompare - 1];
    if (day < kFirstDayToCompare || before == 0) return;
    EXPECT_LE(s_held[day], before + kRoom);
    if (day + 1 < kDaysOfAWeek) return;
    EXPECT_GT(sums.cables, 0u);
    EXPECT_GT(sums.restarts, 0u);
}

INSTANTIATE_TEST_SUITE_P(Day, SoakWeek, ::testing::Range(0u, kDaysOfAWeek),
                         [](const auto& day) { return std::to_string(day.param + 1); });

}  // namespace
