#include "zelt_gige_vmb_discovery_function.h"

#include <array>
#include <atomic>
#include <set>
#include <thread>

#include "latch.h"
#include "vmb_api_fixture.h"
#include "zelt_gige_vmb_call.h"

namespace {

using namespace test_support;
using zelt_gige_api::DiscoveryFunction;
using zelt_gige_api::kSystemHandle;

class Functions : public VmbApiTest {
  protected:
    /// What the library does with an event.
    static void callAsTheLibrary(const DiscoveryFunction& function) {
        function.get()(zelt_gige_api::toVmb(kSystemHandle), "DiscoveryCameraEvent", nullptr);
    }
    /// The API listens to an event that the library keeps ready.
    void listen() {
        api.registerDiscoveryCallback(&discovery);
        VmbSimWaitForEvents(kPatienceMs);
        discovery.clear();
        VmbSimForceFeature(nullptr, "DiscoveryCameraEvent", "Missing");
    }

    RecordingDiscovery discovery;
};

TEST_F(Functions, AreDifferentUntilTheStockIsEmpty) {
    std::array<DiscoveryFunction, DiscoveryFunction::kStock> all;
    std::set<VmbInvalidationCallback> seen;
    for (DiscoveryFunction& function : all) {
        EXPECT_EQ(function.get(), nullptr);
        EXPECT_TRUE(function.take(api));
        EXPECT_FALSE(function.take(api));
        seen.insert(function.get());
    }
    EXPECT_EQ(seen.size(), DiscoveryFunction::kStock);
    DiscoveryFunction oneMore;
    EXPECT_FALSE(oneMore.take(api));
    EXPECT_EQ(oneMore.get(), nullptr);
    all[2].giveBack();
    EXPECT_EQ(all[2].get(), nullptr);
    EXPECT_TRUE(oneMore.take(api));
}

TEST_F(Functions, AreGivenBackByTheirDestruction) {
    for (std::size_t i = 0; i <= DiscoveryFunction::kStock; ++i) {
        DiscoveryFunction function;
        EXPECT_TRUE(function.take(api));
    }
}

TEST_F(Functions, CallTheirOwnerUntilTheyAreGivenBack) {
    listen();
    DiscoveryFunction function;
    ASSERT_TRUE(function.take(api));
    callAsTheLibrary(function);
    EXPECT_EQ(discovery.calls().size(), 1u);
    const VmbInvalidationCallback late = function.get();
    function.giveBack();
    function.giveBack();
    late(zelt_gige_api::toVmb(kSystemHandle), "DiscoveryCameraEvent", nullptr);
    EXPECT_EQ(discovery.calls().size(), 1u);
    api.unregisterDiscoveryCallback();
}

TEST_F(Functions, AreNotGivenBackBeforeTheirCallHasEnded) {
    listen();
    DiscoveryFunction function;
    ASSERT_TRUE(function.take(api));
    test_support::Latch entered(1);
    std::atomic<bool> givenBack{false};
    std::atomic<bool> outlived{false};
    discovery.beforeReturn = [&] {
        entered.count_down();
        for (int turn = 0; turn < 20'000; ++turn) std::this_thread::yield();
        outlived = givenBack.load();
    };
    std::thread library([&] { callAsTheLibrary(function); });
    entered.wait();
    function.giveBack();
    givenBack = true;
    library.join();
    EXPECT_FALSE(outlived);
    discovery.beforeReturn = [] {};
    api.unregisterDiscoveryCallback();
}

}  // namespace
