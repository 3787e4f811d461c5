#include "board/serving/places.h"

#include "base/support_directory.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using testing::TempDir;

TEST(Places, AreInTheDirectoryWhereAgentsLook) {
  const TempDir home;
  MapEnvironment environment;
  environment.variables["HOME"] = home.path();
  const std::optional<std::string> support = supportDirectory(environment);
  ASSERT_TRUE(support.has_value());
  EXPECT_EQ(defaultDirectory(environment), *support + "/Quillpost-board");
}

#if !defined(__APPLE__)
TEST(Places, FollowADataHomeThatIsThere) {
  const TempDir home;
  MapEnvironment environment;
  environment.variables["HOME"] = home.path();
  EXPECT_EQ(defaultDirectory(environment),
            home.pathOf("Library/Application Support/Quillpost-board"));
  home.makeDirectory("data");
  environment.variables["XDG_DATA_HOME"] = home.pathOf("data");
  EXPECT_EQ(defaultDirectory(environment), home.pathOf("data/Quillpost-board"));
}
#endif

}  // namespace
}  // namespace quillpost::board
