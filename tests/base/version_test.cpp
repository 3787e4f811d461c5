#include "base/version.h"

#include "harness/paths.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace quillpost {
namespace {

TEST(Version, IsTheOneThatTheBuildNames) {
  std::ifstream file(testing::inSources("CMakeLists.txt"));
  const std::string build(std::istreambuf_iterator<char>(file), {});
  const std::string named = " VERSION " + std::string(programVersion()) + " ";
  EXPECT_NE(build.find("project(quillpost-teamwork" + named), std::string::npos) << named;
}

}  // namespace
}  // namespace quillpost
