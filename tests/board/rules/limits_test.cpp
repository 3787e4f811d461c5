#include "board/rules/limits.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(Limits, ACutTextHasSoManyCharacters) {
  EXPECT_EQ(cut("abc", 3), "abc");
  EXPECT_EQ(cut("abcd", 3), "abc");
  EXPECT_EQ(cut("äöü", 2), "äö");
}

TEST(Limits, TheMarkOfACutIsOneOfTheCharacters) {
  EXPECT_EQ(cutWithMark("abcd", 4), "abcd");
  EXPECT_EQ(cutWithMark("abcde", 4), "abc…");
}

TEST(Limits, OnlyACutIsNoticed) {
  std::string notice;
  EXPECT_EQ(cutWithNotice("abc", 3, "volley", notice), "abc");
  EXPECT_EQ(notice, "");
  EXPECT_EQ(cutWithNotice("abcd", 3, "volley", notice), "abc");
  EXPECT_EQ(notice, "Your volley was cut at 3 characters; the rest is gone.");
}

TEST(Limits, ALineHasNoBreaks) {
  EXPECT_EQ(oneLine("  one\r\ntwo\nthree \n"), "one  two three");
  EXPECT_EQ(oneLine(" \n "), "");
}

}  // namespace
}  // namespace quillpost::board
