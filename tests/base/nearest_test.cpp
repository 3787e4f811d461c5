#include "base/nearest.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace quillpost {
namespace {

constexpr auto words =
    std::to_array<std::string_view>({"claim", "claim_task", "done", "tasks", "--summary", "stop"});

TEST(NearestWord, IsTheOneThatDiffersLeast) {
  EXPECT_EQ(nearestWord("clam", words), "claim");
  EXPECT_EQ(nearestWord("calim", words), "claim");
  EXPECT_EQ(nearestWord("claim-tsak", words), "claim_task");
  EXPECT_EQ(nearestWord("DONE", words), "done");
  EXPECT_EQ(nearestWord("--sumary", words), "--summary");
  EXPECT_EQ(nearestWord("task", words), "tasks");
}

TEST(NearestWord, IsNoneWhenEvenTheNearestIsFar) {
  for (const std::string_view word : {"", "x", "frobnicate", "dne-x", "--verbose"})
    EXPECT_EQ(nearestWord(word, words), "") << word;
  EXPECT_EQ(nearestWord(std::string(1'000'000, 'c'), words), "");
  EXPECT_EQ(nearestWord("claim", {}), "");
}

TEST(NearestWord, IsTheFirstOfTwoThatAreAsNear) {
  constexpr auto two = std::to_array<std::string_view>({"watch", "catch"});
  EXPECT_EQ(nearestWord("match", two), "watch");
}

}  // namespace
}  // namespace quillpost
