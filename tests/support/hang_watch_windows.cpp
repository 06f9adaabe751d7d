#include "hang_watch.h"

namespace test_support {

void limitEveryTest(unsigned) {}
void beginLimit(const std::string&, unsigned) {}
void endLimit() {}

}  // namespace test_support
