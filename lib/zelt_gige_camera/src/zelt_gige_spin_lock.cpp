#include "zelt_gige_spin_lock.h"

#include <chrono>
#include <thread>

namespace zelt_gige_camera {

void SpinLock::lock() {
    for (unsigned attempt = 0; m_taken.exchange(true, std::memory_order_acquire); ++attempt) {
        switch (waitBefore(attempt)) {
            case Wait::None:
                break;
            case Wait::Yield:
                std::this_thread::yield();
                break;
            case Wait::Millisecond:
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                break;
        }
    }
}

void SpinLock::unlock() {
    m_taken.store(false, std::memory_order_release);
}

}  // namespace zelt_gige_camera
