#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "program_run.h"

using scenario::ProgramResult;
using scenario::runProgram;
using testing::HasSubstr;

namespace {

TEST(CamerasAreListed, AsATable) {
    const ProgramResult result = runProgram({"devices"});
    EXPECT_EQ(result.code, 0) << result.error;
    EXPECT_THAT(result.out, HasSubstr(scenario::shown("plug-in GIGECAMERA \u00b7 vendor library ")));
    EXPECT_THAT(result.out,
                HasSubstr(scenario::shown(
                    "\n  id  camera                        type  format  size          rate\n"
                    "   0  Manta_G-033C (50-0503300001)  GigE  Y422    656\u00d7492  50.00 fps\n"
                    "   1  Manta_G-032B (50-0503200002)  GigE  Y800    656\u00d7492  40.00 fps\n")));
}

TEST(CamerasAreListed, AsJsonAndNothingElse) {
    const ProgramResult result = runProgram({"devices", "--json"});
    EXPECT_EQ(result.code, 0) << result.error;
    const auto json = nlohmann::json::parse(result.out, nullptr, false);
    ASSERT_FALSE(json.is_discarded()) << result.out;
    EXPECT_EQ(json["plugin"], "GIGECAMERA");
    EXPECT_EQ(json["vendor_library"]["simulator"], "two-cameras");
    ASSERT_EQ(json["channels"].size(), 2u);
    EXPECT_EQ(json["channels"][0]["short_id"], "DEV_000F31A10001");
    EXPECT_EQ(json["channels"][0]["format"], "Y422");
    EXPECT_EQ(json["channels"][1]["id"], 1);
    EXPECT_EQ(json["channels"][1]["rate_fps"], 40.0);
}

TEST(CamerasAreListed, UnlessThereIsNone) {
    for (const char* json : {"", "--json"}) {
        std::vector<std::string> arguments = {"devices"};
        if (*json != '\0') arguments.emplace_back(json);
        const ProgramResult result = runProgram(arguments, {.scenario = "zero-cameras"});
        EXPECT_EQ(result.code, 8);
        ASSERT_EQ(result.sentences().size(), 1u) << result.error;
        EXPECT_THAT(result.sentences()[0], HasSubstr("No camera was found; check power, cable and network"));
        if (*json == '\0') {
            EXPECT_EQ(result.out, "");
        } else {
            EXPECT_EQ(nlohmann::json::parse(result.out)["exit_code"], 8);
        }
    }
}

TEST(CamerasAreListed, UnlessTheVendorsLibraryDoesNotStart) {
    const ProgramResult result = runProgram({"devices"}, {.scenario = "no such scenario"});
    EXPECT_EQ(result.code, 7);
    ASSERT_EQ(result.sentences().size(), 1u) << result.error;
    EXPECT_THAT(result.sentences()[0], HasSubstr("could not be started"));
}

TEST(CamerasAreListed, WithTheLogOfTheLevelAskedFor) {
    EXPECT_THAT(runProgram({"devices", "--log-level", "info"}).error,
                HasSubstr("info     zelt_plugin_gige_camera  Using "));
    EXPECT_THAT(runProgram({"devices", "--log-level", "detail"}).error,
                HasSubstr("detail   zelt_plugin_gige_camera  Enumerating available GigE devices"));
    EXPECT_EQ(runProgram({"devices", "--log-level", "off"}).error, "");
}

}  // namespace
