#include "board/serving/system.h"

#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <unistd.h>

namespace quillpost::board {
namespace {

TEST(System, ALinkToNothingIsThere) {
  const testing::TempDir directory;
  const std::string link = directory.pathOf("link");
  ASSERT_EQ(::symlink("nothing", link.c_str()), 0);
  EXPECT_TRUE(exists(link));
  EXPECT_FALSE(exists(link + "/below"));
}

TEST(System, SaysWhyTheLastCallFailed) {
  errno = ENOENT;
  EXPECT_EQ(reason(), "No such file or directory");
}

}  // namespace
}  // namespace quillpost::board
