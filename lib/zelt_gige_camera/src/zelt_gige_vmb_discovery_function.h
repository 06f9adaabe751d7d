/// A function of its own for every object that listens to discovery.
#pragma once

#include <cstddef>

#include "vimba_c.h"

namespace zelt_gige_api {

class VimbaCameraApi;

/// The vendor library unregisters by event and function, not by context: two plug-ins with the same function
/// could not be told apart, and whichever unregistered might silence the other. So each one that listens
/// takes a function from a small stock. [host]
class DiscoveryFunction {
  public:
    static constexpr std::size_t kStock = 8;

    DiscoveryFunction() = default;
    /// Gives back without waiting: the last holder of an API may be a call of this very function.
    ~DiscoveryFunction();
    DiscoveryFunction(const DiscoveryFunction&) = delete;
    DiscoveryFunction& operator=(const DiscoveryFunction&) = delete;

    /// False when the stock is empty, or one is taken already.
    bool take(VimbaCameraApi& owner);
    /// Calls the owner's handleDiscoveryEvent. Null when none is taken.
    VmbInvalidationCallback get() const;
    /// When this returns, no call of the owner's runs or will come. Not on the discovery thread.
    void giveBack();

  private:
    static constexpr std::size_t kNone = kStock;

    std::size_t m_number = kNone;
};

}  // namespace zelt_gige_api
