// What only these systems have: permissions of users, links made by anybody, devices among the files.
#include <fstream>

#include <gtest/gtest.h>

#include "output_directory.h"
#include "temporary_directory.h"

using host::writeTextFile;
using test_support::readFile;
namespace fs = std::filesystem;

namespace {

class WriteTextFilePosix : public testing::Test {
  protected:
    test_support::TemporaryDirectory m_directory;
    fs::path m_file = m_directory.path() / "rig.txt";
};

TEST_F(WriteTextFilePosix, KeepsThePermissions) {
    std::ofstream(m_file) << "old";
    fs::permissions(m_file, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(writeTextFile(m_file, "new"), "");
    EXPECT_EQ(readFile(m_file), "new");
    EXPECT_EQ(fs::status(m_file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(WriteTextFilePosix, KeepsALinkAndWritesTheFileBehindIt) {
    std::ofstream(m_directory.path() / "real.txt") << "old";
    fs::create_symlink("real.txt", m_file);
    EXPECT_EQ(writeTextFile(m_file, "new"), "");
    EXPECT_TRUE(fs::is_symlink(m_file));
    EXPECT_EQ(readFile(m_directory.path() / "real.txt"), "new");
}

TEST_F(WriteTextFilePosix, WritesADeviceItself) {
    fs::create_symlink("/dev/full", m_file);
    EXPECT_EQ(writeTextFile(m_file, "text"), "No space left on device");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_TRUE(fs::is_symlink(m_file));
    EXPECT_EQ(std::distance(fs::directory_iterator(m_directory.path()), fs::directory_iterator()), 1);
}

}  // namespace
