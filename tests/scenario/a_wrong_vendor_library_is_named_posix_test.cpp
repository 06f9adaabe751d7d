// Another library under the vendor's name, in the words of this system's loader.
#include <gmock/gmock.h>

#include "program_run.h"

namespace {

using scenario::binaries;
using testing::HasSubstr;

TEST(AWrongVendorLibraryIsNamed, ByTheFunctionItLacks) {
    const scenario::TemporaryDirectory directory;
    const auto copyTo = [&](const std::string& from, const std::string& to) {
        scenario::fs::copy_file(binaries() / from, directory.path() / to);
        return (directory.path() / to).string();
    };
    const std::string plugin = copyTo("libzelt_plugin_gige_camera.so", "libzelt_plugin_gige_camera.so");
    copyTo("libzelt_base.so", "libVimbaC.so");
    const scenario::ProgramResult result = scenario::runProgram({"devices", "--plugin", plugin});
    EXPECT_EQ(result.code, 6) << result.out << result.error;
    EXPECT_THAT(result.sentences(), testing::ElementsAre(testing::AllOf(HasSubstr("libVimbaC.so"),
                                                                        HasSubstr("is not the right one"),
                                                                        HasSubstr("undefined symbol: Vmb"))));
}

}  // namespace
