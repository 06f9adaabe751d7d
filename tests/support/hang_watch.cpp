#include "hang_watch.h"

#include <gtest/gtest.h>

namespace test_support {
namespace {

class Limit : public ::testing::EmptyTestEventListener {
  public:
    explicit Limit(unsigned seconds) : m_seconds(seconds) {}
    void OnTestStart(const ::testing::TestInfo& test) override {
        beginLimit(std::string(test.test_suite_name()) + "." + test.name(), m_seconds);
    }
    void OnTestEnd(const ::testing::TestInfo&) override { endLimit(); }

  private:
    const unsigned m_seconds;
};

}  // namespace

void limitEveryTest(unsigned seconds) {
    ::testing::UnitTest::GetInstance()->listeners().Append(new Limit(seconds));
}

}  // namespace test_support
