#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/stat.h>

namespace quillpost::testing {
namespace {

TEST(TempDir, IsAShortPathOfItsOwnAndIsGoneAfterwards) {
  std::string path;
  {
    const TempDir directory;
    const TempDir other;
    path = directory.path();
    EXPECT_LT(path.size(), 20U);
    EXPECT_NE(path, other.path());
    EXPECT_TRUE(std::filesystem::is_directory(path));
    directory.write("a/b/c", "text");
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TempDir, WritesFilesAsTheyAre) {
  const TempDir directory;
  const std::string bytes("one\0two\r\n", 9);
  EXPECT_EQ(readFile(directory.write("deep/er/file", bytes)), bytes);
  EXPECT_EQ(readFile(directory.write("deep/er/file", "new")), "new");
  EXPECT_EQ(readFile(directory.pathOf("missing")), "");
}

TEST(TempDir, SetsWhenAnEntryWasModified) {
  const TempDir directory;
  const std::string path = directory.makeDirectory("folder");
  directory.setModified("folder", {.tv_sec = 1'000'000, .tv_nsec = 0});
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mtime, 1'000'000);
  EXPECT_TRUE(std::filesystem::is_directory(path));
}

}  // namespace
}  // namespace quillpost::testing
