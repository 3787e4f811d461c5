#include "board/serving/places.h"

#include "base/support_directory.h"
#include "base/text.h"
#include "harness/fake_environment.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <utility>

namespace quillpost::board {
namespace {

using testing::TempDir;

#if defined(__APPLE__)
TEST(Places, AreInTheDirectoryWhereAgentsLook) {
  const testing::FakeEnvironment environment;
  EXPECT_EQ(defaultDirectory(environment),
            supportDirectory(environment).value_or("") + "/Quillpost-board");
}
#else
TEST(Places, AreWhereAgentsLookOnceTheBoardHasMadeThem) {
  const TempDir home;
  for (const auto& [variable, data] :
       {std::pair("", ".local/share"), {"data/of/mine", "data/of/mine"}}) {
    SCOPED_TRACE(variable);
    testing::FakeEnvironment environment;
    environment.variables["HOME"] = home.path();
    if (*variable != '\0') environment.variables["XDG_DATA_HOME"] = home.pathOf(variable);
    const std::string place = text::cat(data, "/Quillpost-board");
    EXPECT_EQ(defaultDirectory(environment), home.pathOf(place));
    home.makeDirectory(place);
    EXPECT_EQ(supportDirectory(environment), home.pathOf(data));
  }
}

TEST(Places, ABoardOfAnEarlierReleaseStaysWhereItLies) {
  const TempDir home;
  testing::FakeEnvironment environment;
  environment.variables["HOME"] = home.path();
  const std::string former = "Library/Application Support/Quillpost-board";
  home.write(former + "/board.db", "");
  EXPECT_EQ(defaultDirectory(environment), home.pathOf(former));
  home.write(".local/share/Quillpost-board/board.db", "");
  EXPECT_EQ(defaultDirectory(environment), home.pathOf(".local/share/Quillpost-board"));
}

TEST(Places, NeedNoHomeWhereThereIsADataHome) {
  testing::FakeEnvironment environment;
  environment.variables["XDG_DATA_HOME"] = "/data";
  EXPECT_EQ(defaultDirectory(environment), "/data/Quillpost-board");
}
#endif

}  // namespace
}  // namespace quillpost::board
