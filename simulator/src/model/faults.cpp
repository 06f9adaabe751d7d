#include "faults.h"

#include <algorithm>
#include <cstdlib>

namespace simulator {

void CallFaults::add(const std::string& function, bool anyArgument, const std::string& argument,
                     std::int32_t nth, std::int32_t code) {
    const bool lasting = nth < 0;
    // In 64 bits, since the smallest number has no opposite in 32.
    const auto left = static_cast<std::uint32_t>(std::abs(std::int64_t{nth}));
    const std::lock_guard lock(m_mutex);
    m_faults.push_back({function, anyArgument, argument, left, lasting, false, code});
    m_any.store(true, std::memory_order_relaxed);
}

void CallFaults::clear() {
    const std::lock_guard lock(m_mutex);
    m_faults.clear();
    m_any.store(false, std::memory_order_relaxed);
}

bool CallFaults::find(const char* function, const char* argument, std::int32_t& code) {
    const std::lock_guard lock(m_mutex);
    bool found = false;
    for (Fault& fault : m_faults) {
        const bool fits = fault.function == function &&
                          (fault.anyArgument || (argument != nullptr && fault.argument == argument));
        if (!fits || fault.spent) continue;
        if (fault.left > 1) {
            --fault.left;
            continue;
        }
        // Each call is used up by one fault only; the next one strikes the next call.
        if (found) continue;
        found = true;
        code = fault.code;
        fault.spent = !fault.lasting;
    }
    return found;
}

void CableFaults::add(const std::string& function, bool anyArgument, const std::string& argument,
                      std::int32_t nth, const std::string& cameraId, bool plugged) {
    const std::lock_guard lock(m_mutex);
    m_orders.push_back({cameraId, plugged});
    m_calls.add(function, anyArgument, argument, nth, static_cast<std::int32_t>(m_orders.size()));
}

void CableFaults::clear() {
    const std::lock_guard lock(m_mutex);
    m_calls.clear();
    m_orders.clear();
}

bool CableFaults::strikes(const char* function, const char* argument, std::string& cameraId, bool& plugged) {
    std::int32_t number = 0;
    if (!m_calls.strikes(function, argument, number)) return false;
    const std::lock_guard lock(m_mutex);
    if (number < 1 || static_cast<std::size_t>(number) > m_orders.size()) return false;
    const Order& order = m_orders[static_cast<std::size_t>(number) - 1];
    cameraId = order.cameraId;
    plugged = order.plugged;
    return true;
}

void FrameFaults::lose(std::uint32_t count) {
    const std::lock_guard lock(m_mutex);
    m_lost += count;
}

void FrameFaults::damage(std::uint32_t count, std::int32_t status) {
    const std::lock_guard lock(m_mutex);
    if (count > 0) m_damages.push_back({count, status});
}

void FrameFaults::clear() {
    const std::lock_guard lock(m_mutex);
    m_lost = 0;
    m_damages.clear();
}

FrameFate FrameFaults::next() {
    const std::lock_guard lock(m_mutex);
    if (m_lost > 0) {
        --m_lost;
        return {true, 0};
    }
    if (m_damages.empty()) return {};
    const std::int32_t status = m_damages.front().status;
    if (--m_damages.front().count == 0) m_damages.pop_front();
    return {false, status};
}

}  // namespace simulator
