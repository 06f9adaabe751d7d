#include "zelt_gige_vmb_discovery_function.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "zelt_gige_vmb_api.h"
#include "zelt_gige_vmb_call.h"

namespace zelt_gige_api {
namespace {

/// Counted outside the owner, since a call that has begun may find its owner gone.
struct Place {
    std::atomic<VimbaCameraApi*> owner{nullptr};
    std::atomic<unsigned> runningCalls{0};
};
std::array<Place, DiscoveryFunction::kStock> places;

// Not the wait of the atomic itself: in g++ 12 for Windows that may miss its wake-up and never end.
std::mutex endMutex;
std::condition_variable callEnded;

class RunningCall {
  public:
    explicit RunningCall(Place& place) : m_place(place) { ++m_place.runningCalls; }
    ~RunningCall() {
        const std::lock_guard lock(endMutex);
        --m_place.runningCalls;
        callEnded.notify_all();
    }
    RunningCall(const RunningCall&) = delete;
    RunningCall& operator=(const RunningCall&) = delete;

  private:
    Place& m_place;
};

template <std::size_t Number>
void onDiscoveryEvent(const VmbHandle_t handle, const char* name, void*) {
    const RunningCall running(places[Number]);
    VimbaCameraApi* const owner = places[Number].owner;
    if (owner == nullptr) return;
    atVendorBorder("discovery", [=] { owner->handleDiscoveryEvent(fromVmb(handle), name); });
}

template <std::size_t... Numbers>
constexpr std::array<VmbInvalidationCallback, sizeof...(Numbers)> makeStock(std::index_sequence<Numbers...>) {
    return {&onDiscoveryEvent<Numbers>...};
}

constexpr auto kFunctions = makeStock(std::make_index_sequence<DiscoveryFunction::kStock>());

}  // namespace

DiscoveryFunction::~DiscoveryFunction() {
    if (m_number != kNone) places[m_number].owner = nullptr;
}

bool DiscoveryFunction::take(VimbaCameraApi& owner) {
    if (m_number != kNone) return false;
    for (std::size_t number = 0; number < kStock; ++number) {
        VimbaCameraApi* nobody = nullptr;
        if (!places[number].owner.compare_exchange_strong(nobody, &owner)) continue;
        m_number = number;
        return true;
    }
    return false;
}

VmbInvalidationCallback DiscoveryFunction::get() const {
    return m_number != kNone ? kFunctions[m_number] : nullptr;
}

void DiscoveryFunction::giveBack() {
    if (m_number == kNone) return;
    Place& place = places[std::exchange(m_number, kNone)];
    place.owner = nullptr;
    std::unique_lock lock(endMutex);
    callEnded.wait(lock, [&] { return place.runningCalls == 0; });
}

}  // namespace zelt_gige_api
