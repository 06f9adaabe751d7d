#include "zeltpu_system_topology_service_base.h"

#include <sstream>
#include <string>

#include "zeltpu_xml.h"

namespace zelt::plugin_util {

void SystemTopologyServiceBase::getTopology(std::uint64_t, Callback callback, void* context) {
    if (callback == nullptr) return;
    pugi::xml_document document;
    fillMeasurementTree(appendElement(document, "MeasurementTree"));
    std::ostringstream stream;
    document.save(stream, "\t", pugi::format_indent, pugi::encoding_auto);
    const std::string text = stream.str();
    callback(context, text.data(), text.size());
}

void SystemTopologyServiceBase::setListener(std::uint64_t handle) {
    const platform::MutexLock lock(m_mutex);
    m_listener = handle;
}

bool SystemTopologyServiceBase::removeListener(std::uint64_t handle) {
    const platform::MutexLock lock(m_mutex);
    if (m_listener != handle) return false;
    m_listener = 0;
    return true;
}

}  // namespace zelt::plugin_util
