#include "devboard/places.h"

#include <gtest/gtest.h>

#include "harness/temp_dir.h"

namespace quillpost::devboard {
namespace {

using testing::TempDir;

std::optional<std::string> placeFor(std::map<std::string, std::string> variables) {
  return defaultDirectory(MapEnvironment(std::move(variables)));
}

TEST(Places, WithoutADataHomeItIsInTheLibrary) {
  const TempDir home;
  EXPECT_EQ(placeFor({{"HOME", home.path()}}),
            home.pathOf("Library/Application Support/Quillpost-dev"));
  EXPECT_EQ(placeFor({{"HOME", home.path()}, {"XDG_DATA_HOME", home.pathOf("missing")}}),
            home.pathOf("Library/Application Support/Quillpost-dev"));
}

TEST(Places, WithoutAnyHomeThereIsNone) {
  EXPECT_EQ(placeFor({}), std::nullopt);
  EXPECT_EQ(placeFor({{"HOME", ""}}), std::nullopt);
}

#if !defined(__APPLE__)
TEST(Places, ADataHomeThatIsThereIsTaken) {
  const TempDir home;
  home.makeDirectory(".local/share");
  EXPECT_EQ(placeFor({{"HOME", home.path()}}), home.pathOf(".local/share/Quillpost-dev"));
  home.makeDirectory("data");
  EXPECT_EQ(placeFor({{"HOME", home.path()}, {"XDG_DATA_HOME", home.pathOf("data")}}),
            home.pathOf("data/Quillpost-dev"));
  EXPECT_EQ(placeFor({{"HOME", home.path()}, {"XDG_DATA_HOME", "data"}}),
            home.pathOf(".local/share/Quillpost-dev"))
      << "a path that is not absolute does not count";
}
#endif

}  // namespace
}  // namespace quillpost::devboard
