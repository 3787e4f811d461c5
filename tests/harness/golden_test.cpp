#include "harness/golden.h"

#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <string>

namespace quillpost::testing {
namespace {

TEST(SameText, IsTrueOfEqualTexts) {
  EXPECT_TRUE(sameText("", ""));
  EXPECT_TRUE(sameText("a\nb", "a\nb"));
}

TEST(SameText, SaysWhereTheTextsPart) {
  struct Row {
    std::string name, expected, actual, place, expectedLine, actualLine;
  };
  const Row rows[] = {
      {"within a line", "one\ntwo\nthree", "one\ntvo\nthree", "line 2, byte 2: 'w'",
       "expected: two\n", "actual:   tvo"},
      {"the actual ends early", "one\ntwo", "one\n", "line 2, byte 1: 't'", "expected: two\n",
       "actual:   "},
      {"the actual goes on", "one", "one\ntwo", "line 1, byte 4: the end was expected",
       "expected: one\n", "actual:   one"},
      {"a line feed more", "a\nb", "a\n\nb", "a line feed came", "expected: b\n", "actual:   "},
      {"at the first byte", "x", "", "line 1, byte 1", "expected: x\n", "actual:   "},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const ::testing::AssertionResult result = sameText(row.expected, row.actual);
    EXPECT_FALSE(result);
    const std::string said = result.message();
    EXPECT_NE(said.find(row.place), std::string::npos) << said;
    EXPECT_NE(said.find(row.expectedLine), std::string::npos) << said;
    EXPECT_TRUE(said.ends_with(row.actualLine)) << said;
  }
}

TEST(MatchesGolden, ComparesWithTheFileAndNamesIt) {
  const TempDir directory;
  const std::string path = directory.write("a.golden", "one\n");
  EXPECT_TRUE(matchesGolden(path, "one\n", GoldenMode::compare));
  const ::testing::AssertionResult result = matchesGolden(path, "two\n", GoldenMode::compare);
  EXPECT_FALSE(result);
  EXPECT_NE(std::string(result.message()).find(path), std::string::npos) << result.message();
  EXPECT_EQ(readFile(path), "one\n");
}

TEST(MatchesGolden, FailsWithoutAFile) {
  const TempDir directory;
  EXPECT_FALSE(matchesGolden(directory.pathOf("missing"), "", GoldenMode::compare));
}

TEST(MatchesGolden, RewritesTheFileWhenAsked) {
  const TempDir directory;
  const std::string path = directory.write("a.golden", "one\n");
  EXPECT_TRUE(matchesGolden(path, "two\n", GoldenMode::rewrite));
  EXPECT_EQ(readFile(path), "two\n");
}

}  // namespace
}  // namespace quillpost::testing
