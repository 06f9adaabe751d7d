#include "output_directory.h"

#include <fstream>

#include <gtest/gtest.h>

#include "file_size_limit.h"
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
    fs::permissions(m_file, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(writeTextFile(m_file, "two\n"), "");
    EXPECT_EQ(readFile(m_file), "two\n");
    EXPECT_EQ(fs::status(m_file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(files(), 1);
}

TEST_F(WriteTextFile, KeepsTheOldFileWhenTheNewOneDoesNotFit) {
    std::ofstream(m_file) << "old";
    {
        const host_test::FileSizeLimit limit(10);
        EXPECT_EQ(writeTextFile(m_file, "longer than ten bytes"), "File too large");
    }
    EXPECT_EQ(readFile(m_file), "old");
    EXPECT_EQ(files(), 1);
}

TEST_F(WriteTextFile, KeepsALinkAndWritesTheFileBehindIt) {
    std::ofstream(m_directory.path() / "real.txt") << "old";
    fs::create_symlink("real.txt", m_file);
    EXPECT_EQ(writeTextFile(m_file, "new"), "");
    EXPECT_TRUE(fs::is_symlink(m_file));
    EXPECT_EQ(readFile(m_directory.path() / "real.txt"), "new");
}

TEST_F(WriteTextFile, WritesADeviceItself) {
    fs::create_symlink("/dev/full", m_file);
    EXPECT_EQ(writeTextFile(m_file, "text"), "No space left on device");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_TRUE(fs::is_symlink(m_file));
    EXPECT_EQ(files(), 1);
}

TEST_F(WriteTextFile, SaysWhyItCannot) {
    EXPECT_EQ(writeTextFile(m_directory.path(), "text"), "Is a directory");
    EXPECT_EQ(writeTextFile(m_directory.path() / "none" / "rig.txt", "text"), "No such file or directory");
}

}  // namespace
