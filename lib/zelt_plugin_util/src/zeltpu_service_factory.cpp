#include "zeltpu_service_factory.h"

#include "assertion.h"

namespace zeltpu {

std::string serviceKeyText(const boost::uuids::uuid& id) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : id) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0F];
    }
    return text;
}

ServiceFactory::~ServiceFactory() {
    for (auto& [key, service] : m_services) {
        service->release();
        service = nullptr;
    }
}

std::uint32_t ServiceFactory::addRef() {
    return m_ref_count.fetch_add(1);
}

std::uint32_t ServiceFactory::release() {
    ZELT_ASSERT(m_ref_count.load(std::memory_order_acquire) > 0);
    const std::uint32_t previous = m_ref_count.fetch_sub(1);
    if (previous == 1) delete this;
    return previous;
}

bool ServiceFactory::getService(const boost::uuids::uuid& id, plugin_api::IfService** out) {
    const auto it = m_services.find(serviceKeyText(id));
    const bool found = it != m_services.end();
    if (out == nullptr) return found;
    *out = found ? it->second : nullptr;
    if (found) it->second->addRef();
    return found;
}

bool ServiceFactory::registerService(const boost::uuids::uuid& id, plugin_api::IfService* service) {
    ZELT_ASSERT(service);
    if (service == nullptr) return false;
    service->addRef();
    m_services.emplace(serviceKeyText(id), service);
    return true;
}

}  // namespace zeltpu
