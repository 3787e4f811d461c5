#include "base/columns.h"

#include <gtest/gtest.h>

#include <string>

namespace quillpost::unicode {
namespace {

TEST(Columns, AreWhatATerminalDraws) {
  EXPECT_EQ(columnsOf(""), 0u);
  EXPECT_EQ(columnsOf("abc"), 3u);
  EXPECT_EQ(columnsOf("né"), 2u);
  EXPECT_EQ(columnsOf("ne\u0301"), 2u) << "an accent of its own is drawn onto its letter";
  EXPECT_EQ(columnsOf("板"), 2u);
  EXPECT_EQ(columnsOf("\U0001F469\u200D\U0001F4BB"), 2u) << "a picture put together of two";
  EXPECT_EQ(columnsOf("\xff\xfe"), 2u) << "bytes that are no text take one each";
}

TEST(Columns, TheFirstOnesNeverHoldHalfACharacter) {
  EXPECT_EQ(firstColumns("abc", 2), "ab");
  EXPECT_EQ(firstColumns("abc", 9), "abc");
  EXPECT_EQ(firstColumns("a板b", 2), "a") << "one column is left, and the next character takes two";
  EXPECT_EQ(firstColumns("e\u0301x", 1), "e\u0301");
  EXPECT_EQ(firstColumns("abc", 0), "");
}

TEST(Columns, WhatIsCutEndsInAnEllipsisWithinThem) {
  EXPECT_EQ(cutToColumns("abc", 3), "abc");
  EXPECT_EQ(cutToColumns("abcd", 3), "ab…");
  EXPECT_EQ(cutToColumns("板板", 3), "板…");
  EXPECT_EQ(cutToColumns("abcd", 1), "…");
  EXPECT_EQ(cutToColumns("abcd", 0), "");
  EXPECT_EQ(cutToColumns("", 0), "");
}

}  // namespace
}  // namespace quillpost::unicode
