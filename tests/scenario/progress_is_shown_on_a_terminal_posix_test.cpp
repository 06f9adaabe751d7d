// Only on these systems can a test be the terminal of a program and read what the program writes to it.
#include <regex>

#include <gmock/gmock.h>

#include "program_run.h"

namespace {

TEST(ProgressIsShownOnATerminal, AsFramesOnDisk) {
    const scenario::TemporaryDirectory directory;
    const std::string out = (directory.path() / "recording").string();
    scenario::Program program({"record", "--seconds", "600", "--out", out}, {.terminal = true});
    const std::regex frames("%   [0-9]{2,} frames");
    EXPECT_TRUE(program.waitForOutput([&](const std::string& text) {
        return std::regex_search(text, frames);
    })) << program.out()
        << program.error();
    program.interrupt();
    EXPECT_EQ(program.wait(), 130) << program.out() << program.error();
}

}  // namespace
