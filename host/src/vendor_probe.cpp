#include "vendor_probe.h"

#include <bit>

namespace host {
namespace {

template <class Function>
Function* find(const platform::Library& library, const char* name) {
    return std::bit_cast<Function*>(library.symbol(name));
}

class SimulatorStampReader : public IfStampReader {
  public:
    using Function = decltype(VmbSimReadStamp);
    explicit SimulatorStampReader(Function* function) : m_function(function) {}

    VmbError_t read(const void* image, std::uint64_t size, VmbSimFrameStamp& stamp) const override {
        return m_function(image, size, &stamp);
    }

  private:
    Function* m_function;
};

class SimulatorUnderrunReader : public IfUnderrunReader {
  public:
    using Function = decltype(VmbSimCountUnderruns);
    explicit SimulatorUnderrunReader(Function* function) : m_function(function) {}

    std::optional<std::uint64_t> underruns(const std::string& shortId) const override {
        VmbUint64_t frames = 0;
        if (m_function(shortId.c_str(), &frames) != VmbErrorSuccess) return std::nullopt;
        return frames;
    }

  private:
    Function* m_function;
};

class SimulatorTriggerLine : public IfTriggerLine {
  public:
    using Drive = decltype(VmbSimDriveLine);
    using Silence = decltype(VmbSimSilenceLine);
    SimulatorTriggerLine(Drive* driveLine, Silence* silenceLine)
        : m_drive(driveLine), m_silence(silenceLine) {}

    VmbError_t drive(const VmbSimRhythm& rhythm) const override { return m_drive(nullptr, &rhythm); }
    void silence() const override { m_silence(nullptr); }

  private:
    Drive* m_drive;
    Silence* m_silence;
};

std::string versionOf(const platform::Library& library) {
    auto* query = find<decltype(VmbVersionQuery)>(library, "VmbVersionQuery");
    VmbVersionInfo_t info{};
    if (query == nullptr || query(&info, sizeof info) != VmbErrorSuccess) return {};
    return std::to_string(info.major) + '.' + std::to_string(info.minor) + '.' + std::to_string(info.patch);
}

std::string scenarioOf(const platform::Library& library) {
    auto* name = find<decltype(VmbSimScenarioName)>(library, "VmbSimScenarioName");
    const char* text = name != nullptr ? name() : nullptr;
    return text != nullptr ? text : "";
}

}  // namespace

VendorProbe::VendorProbe() : VendorProbe(platform::findLoadedLibrary(platform::kVendorFileName)) {}

VendorProbe::VendorProbe(std::shared_ptr<platform::Library> library) : m_library(std::move(library)) {
    if (!m_library) return;
    m_version = versionOf(*m_library);
    m_scenario = scenarioOf(*m_library);
    if (auto* read = find<decltype(VmbSimReadStamp)>(*m_library, "VmbSimReadStamp"); read != nullptr) {
        m_reader = std::make_unique<SimulatorStampReader>(read);
    }
    if (auto* count = find<decltype(VmbSimCountUnderruns)>(*m_library, "VmbSimCountUnderruns");
        count != nullptr) {
        m_underruns = std::make_unique<SimulatorUnderrunReader>(count);
    }
    auto* drive = find<decltype(VmbSimDriveLine)>(*m_library, "VmbSimDriveLine");
    auto* silence = find<decltype(VmbSimSilenceLine)>(*m_library, "VmbSimSilenceLine");
    if (drive != nullptr && silence != nullptr) {
        m_line = std::make_unique<SimulatorTriggerLine>(drive, silence);
    }
}

std::string VendorProbe::describe() const {
    std::string text =
        "vendor library " + (m_version.empty() ? std::string("of unknown version") : m_version);
    if (!m_scenario.empty()) text += " (simulator: " + m_scenario + ")";
    return text;
}

}  // namespace host
