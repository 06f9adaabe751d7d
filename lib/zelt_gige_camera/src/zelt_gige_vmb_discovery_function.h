/// A function of its own for every object that listens to discovery.
#pragma once

#include <cstddef>

#include "vimba_c.h"

namespace zelt_gige_api {

class VimbaCameraApi;

/// The vendor library tells registrations for one event apart by their function alone: of two plug-ins with
/// the same one, the second would take the events of the first, and whichever unregisters would silence the
/// other. So each takes one from a small stock and puts it back when it is destroyed. [any thread]
class DiscoveryFunction {
  public:
    static constexpr std::size_t kStock = 8;

    explicit DiscoveryFunction(VimbaCameraApi& owner);
    ~DiscoveryFunction();
    DiscoveryFunction(const DiscoveryFunction&) = delete;
    DiscoveryFunction& operator=(const DiscoveryFunction&) = delete;

    /// Calls the owner's handleDiscoveryEvent. Null when the stock was empty.
    VmbInvalidationCallback get() const;

  private:
    std::size_t m_number = 0;
};

}  // namespace zelt_gige_api
