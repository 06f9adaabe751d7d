#include "interface_module.h"

#include <algorithm>
#include <cstring>

namespace simulator {
namespace {

std::vector<FeatureRow> rows() {
    const char* path = "/DeviceEnumeration";
    const char* selector = "DeviceSelector";
    const IntRange any{0, INT64_MAX, 1};
    return {intRow("DeviceCount", any, 0)
                .in(path)
                .readOnly()
                .changing()
                .text("Cameras on the interface at the last update"),
            commandRow("DeviceUpdateList")
                .in(path)
                .affecting({"DeviceCount", "DeviceID", "DeviceSelector"})
                .text("Looks which cameras there are"),
            intRow(selector, {0, 0, 1}, 0)
                .in(path)
                .affecting({"DeviceID"})
                .text("Camera that the other device features are about"),
            textRow("DeviceID", "").in(path).changing().per(selector).text("Identifier of the camera")};
}

}  // namespace

InterfaceModule::InterfaceModule(const LibraryContext& library, const InterfaceRow& row, Devices devices,
                                 std::function<Devices()> current)
    : FeatureModule(library, ThreadRole::Event, true),
      m_row(row),
      m_current(std::move(current)),
      m_features(rows()),
      m_devices(std::move(devices)) {
    settle();
}

InterfaceModule::~InterfaceModule() {
    close();
}

void InterfaceModule::close() {
    m_alive = false;
    events().stop();
}

Result InterfaceModule::execute(Lock&, const char* command) {
    if (std::strcmp(command, "DeviceUpdateList") == 0) {
        m_devices = m_current();
        settle();
    }
    return Result::Success;
}

void InterfaceModule::settle() {
    const auto count = static_cast<std::int64_t>(m_devices.size());
    const std::int64_t last = std::max<std::int64_t>(0, count - 1);
    const std::int64_t selected = std::min(last, m_features.integer("DeviceSelector"));
    m_features.at("DeviceSelector").intRange.max = last;
    m_features.compute("DeviceSelector", selected);
    m_features.compute("DeviceCount", count);
    m_features.compute("DeviceID", count > 0 ? m_devices[static_cast<std::size_t>(selected)] : std::string());
}

}  // namespace simulator
