#pragma once

#include <cstdint>

#include "if_service.h"

namespace zelt {

/// Tells the plug-in at which frequency the host's "Sync Out AUX" output triggers cameras. Lives as long as
/// the plug-in; addRef and release do nothing and return 0.
class IfSyncAuxService : public plugin_api::IfService {
  public:
    /// Sets the frequency to `numerator` / `denominator` Hz, in lowest terms; (0, 0) clears it. Every camera
    /// channel is told before this returns, also of a frequency equal to the one before.
    ///
    /// [host threads] Calls from several threads wait for each other. The host must not call this from a
    /// change callback: the call behind the callback still holds the service, and both would wait forever.
    ///
    /// Throws boost::bad_rational when there is no such fraction: "bad rational: zero denominator" for
    /// (n, 0), which is an assertion too, and "bad rational: non-zero singular denominator" when the fraction
    /// in lowest terms with a positive denominator does not fit 64 bits. The frequency is unchanged then, and
    /// no channel is told.
    virtual void setSyncOutAuxFrequency(std::int64_t numerator, std::int64_t denominator) = 0;

  protected:
    ~IfSyncAuxService() = default;
};

}  // namespace zelt
