/// Clears a flag however a scope is left.
#pragma once

#include <atomic>

namespace zelt_gige_camera {

class ClearOnExit {
  public:
    explicit ClearOnExit(std::atomic<bool>& flag) : m_flag(flag) {}
    ~ClearOnExit() { m_flag = false; }
    ClearOnExit(const ClearOnExit&) = delete;
    ClearOnExit& operator=(const ClearOnExit&) = delete;

  private:
    std::atomic<bool>& m_flag;
};

}  // namespace zelt_gige_camera
