#include "zelt_gige_sync_aux_service.h"

#include <atomic>
#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "latch.h"
#include "log_capture.h"

namespace {

using test_support::AssertionCapture;
using test_support::LogCapture;
using test_support::LogLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::ThrowsMessage;
using zelt_gige_camera::AuxFrequency;
using zelt_gige_camera::GigeSyncAuxService;
using zelt_gige_camera::Rational;

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
const LogLine kEntering{0, "zelt_plugin_gige_camera",
                        "Entering GigeSyncAuxService::setSyncOutAuxFrequency() ..."};
const LogLine kExiting{0, "zelt_plugin_gige_camera",
                       "... exiting GigeSyncAuxService::setSyncOutAuxFrequency()."};

class Listener final : public zelt_gige_camera::IfAuxFrequencyListener {
  public:
    void onSyncOutAuxFrequencyChanged(const AuxFrequency& frequency) override {
        told.push_back(frequency);
        if (fails) throw std::runtime_error("the channel is on fire");
    }
    std::vector<AuxFrequency> told;
    bool fails = false;
};

class SyncAuxService : public ::testing::Test {
  protected:
    Listener m_listener;
    GigeSyncAuxService m_service{&m_listener};
};

TEST_F(SyncAuxService, CountsNoReferences) {
    EXPECT_EQ(m_service.addRef(), 0u);
    EXPECT_EQ(m_service.addRef(), 0u);
    EXPECT_EQ(m_service.release(), 0u);
    EXPECT_EQ(m_service.release(), 0u);
    EXPECT_EQ(m_service.release(), 0u);
}

TEST_F(SyncAuxService, KnowsNoFrequencyAtFirst) {
    EXPECT_EQ(m_service.getSyncOutAuxFrequency(), AuxFrequency());
    EXPECT_THAT(m_listener.told, IsEmpty());
}

TEST_F(SyncAuxService, KeepsAndTellsAFrequencyInLowestTerms) {
    m_service.setSyncOutAuxFrequency(10, -4);
    EXPECT_EQ(m_service.getSyncOutAuxFrequency(), AuxFrequency(Rational(-5, 2)));
    EXPECT_THAT(m_listener.told, ElementsAre(AuxFrequency(Rational(-5, 2))));
}

TEST_F(SyncAuxService, TellsAlsoOfAnEqualFrequency) {
    m_service.setSyncOutAuxFrequency(100, 1);
    m_service.setSyncOutAuxFrequency(100, 1);
    m_service.setSyncOutAuxFrequency(200, 2);
    m_service.setSyncOutAuxFrequency(0, 0);
    m_service.setSyncOutAuxFrequency(0, 0);
    const AuxFrequency hundred = Rational(100);
    EXPECT_THAT(m_listener.told, ElementsAre(hundred, hundred, hundred, AuxFrequency(), AuxFrequency()));
}

TEST_F(SyncAuxService, ZeroOverZeroClearsTheFrequency) {
    const AssertionCapture assertions;
    m_service.setSyncOutAuxFrequency(100, 1);
    m_service.setSyncOutAuxFrequency(0, 0);
    EXPECT_EQ(m_service.getSyncOutAuxFrequency(), AuxFrequency());
    EXPECT_THAT(m_listener.told, ElementsAre(AuxFrequency(Rational(100)), AuxFrequency()));
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(SyncAuxService, AZeroFrequencyIsAFrequency) {
    m_service.setSyncOutAuxFrequency(0, 5);
    const AuxFrequency frequency = m_service.getSyncOutAuxFrequency();
    ASSERT_TRUE(frequency.has_value());
    EXPECT_EQ(frequency->numerator(), 0);
    EXPECT_EQ(frequency->denominator(), 1);
    EXPECT_THAT(m_listener.told, ElementsAre(frequency));
}

TEST_F(SyncAuxService, AZeroDenominatorIsAnAssertionAndAnError) {
    m_service.setSyncOutAuxFrequency(100, 1);
    const AssertionCapture assertions;
    for (const std::int64_t num : {std::int64_t{1}, std::int64_t{-1}, kMin}) {
        EXPECT_THAT([&] { m_service.setSyncOutAuxFrequency(num, 0); },
                    ThrowsMessage<boost::bad_rational>("bad rational: zero denominator"));
    }
    ASSERT_THAT(assertions.expressions(), ElementsAre("den != 0", "den != 0", "den != 0"));
    EXPECT_EQ(assertions.failures()[0].message, std::nullopt);
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_sync_aux_service");
}

TEST_F(SyncAuxService, AFractionThatDoesNotFitIsAnErrorOnly) {
    const AssertionCapture assertions;
    const auto singular = ThrowsMessage<boost::bad_rational>("bad rational: non-zero singular denominator");
    EXPECT_THAT([&] { m_service.setSyncOutAuxFrequency(-1, kMin); }, singular);
    EXPECT_THAT([&] { m_service.setSyncOutAuxFrequency(kMin, -1); }, singular);
    EXPECT_THAT(assertions.failures(), IsEmpty());
}

TEST_F(SyncAuxService, AnErrorLeavesTheFrequencyAndTellsNobodyAndLocksNobodyOut) {
    const AssertionCapture assertions;
    m_service.setSyncOutAuxFrequency(100, 1);
    m_listener.told.clear();
    EXPECT_THROW(m_service.setSyncOutAuxFrequency(1, 0), boost::bad_rational);
    EXPECT_THROW(m_service.setSyncOutAuxFrequency(-1, kMin), boost::bad_rational);
    EXPECT_EQ(m_service.getSyncOutAuxFrequency(), AuxFrequency(Rational(100)));
    EXPECT_THAT(m_listener.told, IsEmpty());
    m_service.setSyncOutAuxFrequency(0, 0);
    EXPECT_THROW(m_service.setSyncOutAuxFrequency(1, 0), boost::bad_rational);
    EXPECT_EQ(m_service.getSyncOutAuxFrequency(), AuxFrequency());
}

TEST_F(SyncAuxService, TracesEntryAndExit) {
    const LogCapture log;
    m_service.setSyncOutAuxFrequency(100, 1);
    EXPECT_THAT(log.lines(), ElementsAre(kEntering, kExiting));
}

TEST_F(SyncAuxService, TracesTheExitOfAnError) {
    const AssertionCapture assertions;
    const LogCapture log;
    EXPECT_THROW(m_service.setSyncOutAuxFrequency(1, 0), boost::bad_rational);
    EXPECT_THAT(log.lines(), ElementsAre(kEntering, kExiting));
}

TEST_F(SyncAuxService, ReadsWithoutATrace) {
    const LogCapture log;
    EXPECT_FALSE(m_service.getSyncOutAuxFrequency().has_value());
    m_service.deliver([](const AuxFrequency&) {});
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SyncAuxService, AListenerThatThrowsIsHeardByTheHostAndTheFrequencyStays) {
    const LogCapture log;
    m_listener.fails = true;
    EXPECT_THAT([&] { m_service.setSyncOutAuxFrequency(100, 1); },
                ThrowsMessage<std::runtime_error>("the channel is on fire"));
    EXPECT_THAT(log.lines(), ElementsAre(kEntering, kExiting));
    EXPECT_EQ(m_service.getSyncOutAuxFrequency(), AuxFrequency(Rational(100)));
    m_listener.fails = false;
    m_service.setSyncOutAuxFrequency(50, 1);
    EXPECT_EQ(m_service.getSyncOutAuxFrequency(), AuxFrequency(Rational(50)));
}

TEST_F(SyncAuxService, DeliversTheCurrentFrequency) {
    std::vector<AuxFrequency> stored;
    const auto store = [&](const AuxFrequency& frequency) { stored.push_back(frequency); };
    m_service.deliver(store);
    m_service.setSyncOutAuxFrequency(100, 1);
    m_service.deliver(store);
    EXPECT_THAT(stored, ElementsAre(AuxFrequency(), AuxFrequency(Rational(100))));
}

TEST_F(SyncAuxService, AStoreThatThrowsLocksNobodyOut) {
    EXPECT_THROW(m_service.deliver([](const AuxFrequency&) { throw std::runtime_error("no room"); }),
                 std::runtime_error);
    m_service.setSyncOutAuxFrequency(100, 1);
    EXPECT_EQ(m_service.getSyncOutAuxFrequency(), AuxFrequency(Rational(100)));
}

TEST(SyncAuxServiceWithoutAPlugin, IsAnAssertionAndWorksOtherwise) {
    const AssertionCapture assertions;
    GigeSyncAuxService service(nullptr);
    ASSERT_THAT(assertions.expressions(), ElementsAre("m_camera_plugin"));
    EXPECT_EQ(assertions.failures()[0].file, "lib/zelt_gige_camera/src/zelt_gige_sync_aux_service");
    service.setSyncOutAuxFrequency(100, 1);
    EXPECT_EQ(service.getSyncOutAuxFrequency(), AuxFrequency(Rational(100)));
}

/// What a channel keeps: the last frequency it was told, by whichever way. Counts calls that meet another.
class Channel final : public zelt_gige_camera::IfAuxFrequencyListener {
  public:
    void onSyncOutAuxFrequencyChanged(const AuxFrequency& frequency) override { keep(frequency); }
    void keep(const AuxFrequency& frequency) {
        const bool alone = !m_inside.exchange(true);
        if (!alone) ++meetings;
        // Whoever is not locked out gets its turn here.
        std::this_thread::yield();
        if (alone) {
            kept = frequency;
            keptPulses = frequency ? frequency->numerator() : 0;
            m_inside = false;
        }
    }
    AuxFrequency kept;
    std::atomic<std::int64_t> keptPulses{0};
    std::atomic<int> meetings{0};

  private:
    std::atomic<bool> m_inside{false};
};

constexpr int kCalls = 1000;

/// Runs both at once, each `kCalls` times.
template <class First, class Second>
void runAtOnce(First first, Second second) {
    test_support::Latch start(2);
    std::thread other([&] {
        start.arrive_and_wait();
        for (int call = 1; call <= kCalls; ++call) second(call);
    });
    start.arrive_and_wait();
    for (int call = 1; call <= kCalls; ++call) first(call);
    other.join();
}

TEST(SyncAuxServiceAtOnce, TellsOneFrequencyAfterTheOther) {
    Channel channel;
    GigeSyncAuxService service(&channel);
    runAtOnce([&](int call) { service.setSyncOutAuxFrequency(call, 1); },
              [&](int call) { service.setSyncOutAuxFrequency(call, 7); });
    EXPECT_EQ(channel.meetings, 0);
    EXPECT_EQ(channel.kept, service.getSyncOutAuxFrequency());
}

TEST(SyncAuxServiceAtOnce, ChangesNothingWhileAFrequencyIsDelivered) {
    Channel channel;
    GigeSyncAuxService service(&channel);
    runAtOnce([&](int call) { service.setSyncOutAuxFrequency(call, 1); },
              [&](int) { service.deliver([&](const AuxFrequency& frequency) { channel.keep(frequency); }); });
    EXPECT_EQ(channel.meetings, 0);
    EXPECT_EQ(channel.kept, service.getSyncOutAuxFrequency());
}

TEST(SyncAuxServiceAtOnce, KnowsNoFrequencyBeforeTheChannelsDo) {
    Channel channel;
    GigeSyncAuxService service(&channel);
    std::atomic<bool> finished{false};
    int tooSoon = 0;
    std::thread reader([&] {
        while (!finished) {
            const AuxFrequency read = service.getSyncOutAuxFrequency();
            if (read && read->numerator() > channel.keptPulses) ++tooSoon;
        }
    });
    for (int call = 1; call <= kCalls; ++call) service.setSyncOutAuxFrequency(call, 1);
    finished = true;
    reader.join();
    EXPECT_EQ(tooSoon, 0);
}

}  // namespace
