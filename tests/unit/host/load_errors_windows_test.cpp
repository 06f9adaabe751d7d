#include <gtest/gtest.h>

#include "host_platform.h"

using host::platform::classifyLoadError;
using host::platform::LoadProblem;

namespace {

// 126 and 127 are the numbers of a missing library and of a missing function.
TEST(LoadErrors, AreToldApartByTheVendorsNameAndTheNumber) {
    EXPECT_EQ(classifyLoadError("not found (error 126)", false), LoadProblem::Missing);
    EXPECT_EQ(classifyLoadError("VimbaC.dll: not found (error 126)", true), LoadProblem::VendorMissing);
    EXPECT_EQ(classifyLoadError("VimbaC.dll: no such function (error 127)", true), LoadProblem::VendorWrong);
    EXPECT_EQ(classifyLoadError("VimbaC.dll: bad format (error 193)", true), LoadProblem::VendorWrong);
    EXPECT_EQ(classifyLoadError("not found (error 126)", true), LoadProblem::Other);
    EXPECT_EQ(classifyLoadError("no such function (error 127)", true), LoadProblem::Other);
}

}  // namespace
