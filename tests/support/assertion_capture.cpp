#include "assertion_capture.h"

#include <mutex>

namespace test_support {
namespace {

std::mutex s_mutex;
std::vector<FailedAssertion> s_failures;
int s_result = 1;

int capture(const char* expression, const char* message, const char* file, int line) {
    const std::lock_guard lock(s_mutex);
    FailedAssertion failure{expression, std::nullopt, file, line};
    if (message != nullptr) failure.message = message;
    s_failures.push_back(failure);
    return s_result;
}

}  // namespace

AssertionCapture::AssertionCapture(int result) {
    {
        const std::lock_guard lock(s_mutex);
        s_failures.clear();
        s_result = result;
    }
    m_previous = diagnostics::setAssertionHook(&capture);
}

AssertionCapture::~AssertionCapture() {
    diagnostics::setAssertionHook(m_previous);
}

std::vector<FailedAssertion> AssertionCapture::failures() const {
    const std::lock_guard lock(s_mutex);
    return s_failures;
}

std::vector<std::string> AssertionCapture::expressions() const {
    std::vector<std::string> expressions;
    for (const FailedAssertion& failure : failures()) expressions.push_back(failure.expression);
    return expressions;
}

}  // namespace test_support
