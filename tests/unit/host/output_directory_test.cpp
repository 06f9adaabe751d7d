#include "output_directory.h"

#include <fstream>

#include <gmock/gmock.h>

#include "full_files.h"
#include "temporary_directory.h"

using host::writeTextFile;
using test_support::readFile;
namespace fs = std::filesystem;

namespace {

class WriteTextFile : public testing::Test {
  protected:
    std::ptrdiff_t files() const {
        return std::distance(fs::directory_iterator(m_directory.path()), fs::directory_iterator());
    }

    test_support::TemporaryDirectory m_directory;
    fs::path m_file = m_directory.path() / "rig.txt";
};

TEST_F(WriteTextFile, MakesOrReplacesAFile) {
    EXPECT_EQ(writeTextFile(m_file, "one\n"), "");
    EXPECT_EQ(readFile(m_file), "one\n");
    EXPECT_EQ(writeTextFile(m_file, "two\n"), "");
    EXPECT_EQ(readFile(m_file), "two\n");
    EXPECT_EQ(files(), 1);
}

TEST_F(WriteTextFile, KeepsTheOldFileWhenTheNewOneDoesNotFit) {
    std::ofstream(m_file) << "old";
    {
        const test_support::FileSizeLimit limit(10);
        EXPECT_EQ(writeTextFile(m_file, "longer than ten bytes"), test_support::kTooLarge);
    }
    EXPECT_EQ(readFile(m_file), "old");
    EXPECT_EQ(files(), 1);
}

TEST_F(WriteTextFile, SaysWhyItCannot) {
    // Each in the words of one system.
    EXPECT_THAT(writeTextFile(m_directory.path(), "text"),
                testing::AnyOf("Is a directory", "Permission denied"));
    EXPECT_EQ(writeTextFile(m_directory.path() / "none" / "rig.txt", "text"), "No such file or directory");
}

}  // namespace
