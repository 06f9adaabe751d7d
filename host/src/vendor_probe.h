#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host_platform.h"
#include "vimba_simulator.h"

namespace host {

/// A simulated camera's picture of fewer bytes has no room for a stamp.
inline constexpr std::uint64_t kStampBytes = 72;

/// Reads the truth that a simulated camera wrote into a picture.
class IfStampReader {
  public:
    virtual ~IfStampReader() = default;
    /// As VmbSimReadStamp.
    virtual VmbError_t read(const void* image, std::uint64_t size, VmbSimFrameStamp& stamp) const = 0;
};

/// Knows which frames a simulated camera sent in vain.
class IfUnderrunReader {
  public:
    virtual ~IfUnderrunReader() = default;
    /// Frames that came since the camera was started while no buffer was queued for them; of the camera with
    /// this short id, as long as it is open.
    virtual std::optional<std::uint64_t> underruns(const std::string& shortId) const = 0;
};

/// The input that triggers simulated cameras.
class IfTriggerLine {
  public:
    virtual ~IfTriggerLine() = default;
    /// As VmbSimDriveLine and VmbSimSilenceLine, for all cameras.
    virtual VmbError_t drive(const VmbSimRhythm& rhythm) const = 0;
    virtual void silence() const = 0;
};

/// The camera vendor's library as the plug-in loaded it. Keeps it loaded.
class VendorProbe {
  public:
    /// Looks at the vendor library of this process.
    VendorProbe();
    explicit VendorProbe(std::shared_ptr<platform::Library> library);

    /// "1.9.1"; empty when the library does not tell.
    const std::string& version() const { return m_version; }
    /// The simulator's scenario; empty with the vendor's own library.
    const std::string& scenario() const { return m_scenario; }
    /// Null with the vendor's own library.
    const IfStampReader* stampReader() const { return m_reader.get(); }
    /// Null with the vendor's own library.
    const IfUnderrunReader* underrunReader() const { return m_underruns.get(); }
    /// Null with the vendor's own library.
    const IfTriggerLine* triggerLine() const { return m_line.get(); }
    /// "vendor library 1.9.1 (simulator: two-cameras)"
    std::string describe() const;

  private:
    std::shared_ptr<platform::Library> m_library;
    std::string m_version;
    std::string m_scenario;
    std::unique_ptr<IfStampReader> m_reader;
    std::unique_ptr<IfUnderrunReader> m_underruns;
    std::unique_ptr<IfTriggerLine> m_line;
};

}  // namespace host
