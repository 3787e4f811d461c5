#include "board/person/columns.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(SheetColumns, AreKnownByName) {
  EXPECT_EQ(columnNamed("lease").kind, ColumnKind::span);
  EXPECT_EQ(columnNamed("lease").label, "lease ");
  EXPECT_EQ(columnNamed("from a later version").kind, ColumnKind::words);
  EXPECT_TRUE(isNumber(columnNamed("at").kind));
  EXPECT_FALSE(isNumber(columnNamed("options").kind));
}

TEST(SheetColumns, SectionsHaveTitlesAndOnesAreObjects) {
  EXPECT_EQ(sectionNamed("needs").title, "NEEDS YOU");
  EXPECT_TRUE(sectionNamed("task").isOne);
  EXPECT_FALSE(sectionNamed("log").isOne);
  EXPECT_EQ(sectionNamed("from a later version").title, "");
}

}  // namespace
}  // namespace quillpost::board
