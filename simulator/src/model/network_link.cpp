#include "network_link.h"

namespace simulator {

LinkRow NetworkLink::row() const {
    const std::lock_guard lock(m_mutex);
    return m_row;
}

void NetworkLink::set(const LinkRow& row) {
    const std::lock_guard lock(m_mutex);
    m_row = row;
}

}  // namespace simulator
