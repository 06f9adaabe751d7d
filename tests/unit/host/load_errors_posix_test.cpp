#include <gtest/gtest.h>

#include "host_platform.h"

using host::platform::classifyLoadError;
using host::platform::LoadProblem;

namespace {

TEST(LoadErrors, AreToldApartByTheLoadersWords) {
    EXPECT_EQ(classifyLoadError("/x/p.so: cannot open shared object file: No such file or directory", false),
              LoadProblem::Missing);
    EXPECT_EQ(
        classifyLoadError("libVimbaC.so: cannot open shared object file: No such file or directory", true),
        LoadProblem::VendorMissing);
    EXPECT_EQ(classifyLoadError("/x/p.so: undefined symbol: VmbStartup", true), LoadProblem::VendorWrong);
    EXPECT_EQ(classifyLoadError("/x/libVimbaC.so: file too short", true), LoadProblem::VendorWrong);
    EXPECT_EQ(classifyLoadError("libVimbaC.so: cannot open shared object file: Permission denied", true),
              LoadProblem::VendorWrong);
    EXPECT_EQ(classifyLoadError("/x/p.so: undefined symbol: other", true), LoadProblem::Other);
    EXPECT_EQ(classifyLoadError("libpng.so: cannot open shared object file: No such file or directory", true),
              LoadProblem::Other);
}

}  // namespace
