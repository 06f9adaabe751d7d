/// Failures that a test orders in advance.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace simulator {

/// Calls that fail. [any thread]
class CallFaults {
  public:
    /// See VmbSimFailCall. `nth` is not zero; an empty `argument` with `anyArgument` fits every call.
    void add(const std::string& function, bool anyArgument, const std::string& argument, std::int32_t nth,
             std::int32_t code);
    void clear();
    /// Counts a call and tells whether it fails. `argument` may be null. Costs one load when nothing is
    /// ordered, and never allocates.
    bool strikes(const char* function, const char* argument, std::int32_t& code) {
        return m_any.load(std::memory_order_relaxed) && find(function, argument, code);
    }

  private:
    struct Fault {
        std::string function;
        bool anyArgument;
        std::string argument;
        std::uint32_t left;  ///< calls until it strikes
        bool lasting;
        bool spent;
        std::int32_t code;
    };

    bool find(const char* function, const char* argument, std::int32_t& code);

    std::atomic<bool> m_any{false};
    std::mutex m_mutex;
    std::vector<Fault> m_faults;
};

/// Cables that are pulled or plugged in while a call is under way. [any thread]
class CableFaults {
  public:
    void add(const std::string& function, bool anyArgument, const std::string& argument, std::int32_t nth,
             const std::string& cameraId, bool plugged);
    void clear();
    /// Counts a call; the camera concerned when this is the one. Costs one load when nothing is ordered.
    bool strikes(const char* function, const char* argument, std::string& cameraId, bool& plugged);

  private:
    struct Order {
        std::string cameraId;
        bool plugged;
    };

    std::mutex m_mutex;
    std::vector<Order> m_orders;  // by the codes of the faults
    CallFaults m_calls;
};

/// What becomes of a frame on its way.
struct FrameFate {
    bool lost = false;
    std::int32_t status = 0;  ///< receive status of the frame record
};

/// Frames of one camera that get lost or damaged. [any thread]
class FrameFaults {
  public:
    void lose(std::uint32_t count);
    void damage(std::uint32_t count, std::int32_t status);
    void clear();
    /// Fate of the next frame.
    FrameFate next();

  private:
    struct Damage {
        std::uint32_t count;
        std::int32_t status;
    };

    std::mutex m_mutex;
    std::uint64_t m_lost = 0;
    std::deque<Damage> m_damages;
};

}  // namespace simulator
