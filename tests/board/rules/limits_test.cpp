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
  EXPECT_EQ(oneLine("one\ttwo"), "one two");
}

TEST(Limits, OneCharacterOfManyBytesCountsAsMany) {
  std::string zalgo = "a";
  while (zalgo.size() < 1000) zalgo += "\u0301";
  EXPECT_LE(cut(zalgo, 3).size(), 3 * bytesOfCharacter);
  EXPECT_EQ(cut("e\u0301x", 1), "e\u0301");
}

TEST(Limits, AListKeepsItsFirstEntries) {
  std::string notice;
  EXPECT_EQ(entriesOf(std::nullopt, "tags", notice).size(), 0u);
  EXPECT_EQ(entriesOf(std::vector<std::string>(64, "x"), "tags", notice).size(), 64u);
  EXPECT_EQ(notice, "");
  EXPECT_EQ(entriesOf(std::vector<std::string>(65, "x"), "tags", notice).size(), 64u);
  EXPECT_NE(notice.find("`tags`"), std::string::npos);
}

TEST(Limits, ABriefEndsWithAWholeCharacter) {
  std::string notice;
  const std::string brief = std::string(briefLimit - 1, 'x') + "é";
  EXPECT_EQ(briefText(brief, "brief", notice), std::string(briefLimit - 1, 'x'));
}

}  // namespace
}  // namespace quillpost::board
