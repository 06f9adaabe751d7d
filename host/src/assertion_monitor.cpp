#include "assertion_monitor.h"

#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace host {
namespace {

// The hook is a plain function, so its state belongs to the process.
std::mutex s_mutex;
Console* s_console = nullptr;
std::uint64_t s_count = 0;
std::set<std::pair<std::string, int>> s_shown;

void show(const char* expression, const char* message, const char* file, int line) {
    std::string text = std::string("assertion failed: ") + expression;
    if (message != nullptr) text += std::string(" (") + message + ")";
    s_console->tell(text + " at " + file + ":" + std::to_string(line));
}

int count(const char* expression, const char* message, const char* file, int line) {
    const std::lock_guard lock(s_mutex);
    ++s_count;
    // A check on the frame path may fail hundreds of times a second.
    if (s_console != nullptr && s_shown.emplace(file, line).second) show(expression, message, file, line);
    return 1;
}

}  // namespace

AssertionMonitor::AssertionMonitor(Console& console) {
    {
        const std::lock_guard lock(s_mutex);
        s_console = &console;
        s_count = 0;
        s_shown.clear();
    }
    m_previous = diagnostics::setAssertionHook(&host::count);
}

AssertionMonitor::~AssertionMonitor() {
    diagnostics::setAssertionHook(m_previous);
    const std::lock_guard lock(s_mutex);
    s_console = nullptr;
}

std::uint64_t AssertionMonitor::count() const {
    const std::lock_guard lock(s_mutex);
    return s_count;
}

}  // namespace host
