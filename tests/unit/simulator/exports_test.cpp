// What the built library exports.
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "simulator_fixture.h"
#include "test_system.h"

namespace {

/// Names of the functions that a header declares for export.
std::set<std::string> declared(const std::string& header) {
    std::ifstream file(ZELT_SOURCE_DIR "/" + header);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::set<std::string> names;
    const std::regex declaration(R"(\nIMEXPORTC [\w* ]*?(Vmb\w+)\()");
    for (std::sregex_iterator found(text.begin(), text.end(), declaration), end; found != end; ++found) {
        names.insert((*found)[1]);
    }
    return names;
}

const std::set<std::string> kVendor = declared("lib/vimba_c/inc/vimba_c.h");
const std::set<std::string> kControl = declared("simulator/inc/vimba_simulator.h");

TEST(Exports, AreTheVendorsFiftyEight) {
    EXPECT_EQ(kVendor.size(), 58u);
    EXPECT_EQ(kVendor.count("VmbCameraSettingsLoad"), 1u);
}

TEST(Exports, AreTheVendorsAndTheControlFunctionsAndNothingElse) {
    const auto library = test_support::libraryHolding(reinterpret_cast<void*>(&VmbSimTime));
    std::set<std::string> expected = kVendor;
    expected.insert(kControl.begin(), kControl.end());
    EXPECT_EQ(test_support::exportedNames(library), expected);
}

TEST(Exports, AreFoundByNameInALibraryOfTheVendorsName) {
    const std::string library = test_support::libraryFileName("VimbaC");
    for (const auto& names : {kVendor, kControl}) {
        for (const std::string& name : names) {
            EXPECT_NE(test_support::loadedSymbol(library, name), nullptr) << name;
        }
    }
    EXPECT_EQ(test_support::loadedSymbol(library, "VmbSimTime"), reinterpret_cast<void*>(&VmbSimTime));
}

}  // namespace
