#include "zelt_gige_vmb_discovery_function.h"

#include <array>
#include <atomic>
#include <utility>

#include "zelt_gige_vmb_api.h"
#include "zelt_gige_vmb_call.h"

namespace zelt_gige_api {
namespace {

std::array<std::atomic<VimbaCameraApi*>, DiscoveryFunction::kStock> owners{};

template <std::size_t Number>
void onDiscoveryEvent(const VmbHandle_t handle, const char* name, void*) {
    VimbaCameraApi* const owner = owners[Number];
    if (owner == nullptr) return;
    atVendorBorder("discovery", [=] { owner->handleDiscoveryEvent(fromVmb(handle), name); });
}

template <std::size_t... Numbers>
constexpr std::array<VmbInvalidationCallback, sizeof...(Numbers)> makeStock(std::index_sequence<Numbers...>) {
    return {&onDiscoveryEvent<Numbers>...};
}

constexpr auto kFunctions = makeStock(std::make_index_sequence<DiscoveryFunction::kStock>());

bool take(std::atomic<VimbaCameraApi*>& place, VimbaCameraApi& owner) {
    VimbaCameraApi* nobody = nullptr;
    return place.compare_exchange_strong(nobody, &owner);
}

}  // namespace

DiscoveryFunction::DiscoveryFunction(VimbaCameraApi& owner) {
    while (m_number < kStock && !take(owners[m_number], owner)) ++m_number;
}

DiscoveryFunction::~DiscoveryFunction() {
    if (m_number < kStock) owners[m_number] = nullptr;
}

VmbInvalidationCallback DiscoveryFunction::get() const {
    return m_number < kStock ? kFunctions[m_number] : nullptr;
}

}  // namespace zelt_gige_api
