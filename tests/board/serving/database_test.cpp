#include "board/serving/database.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

Database inMemory() {
  std::string why;
  std::optional<Database> database = Database::open(":memory:", why);
  EXPECT_TRUE(database) << why;
  return *std::move(database);
}

TEST(Database, GivesBackWhatWasBound) {
  Database database = inMemory();
  ASSERT_TRUE(database.run("CREATE TABLE t (a TEXT, b INTEGER)"));
  Statement put = database.prepare("INSERT INTO t VALUES (?1, ?2)");
  put.bind(1, std::string_view("x\0y", 3));
  put.bind(2, int64_t{1} << 60);
  ASSERT_TRUE(put.run());
  put.bindNull(1);
  ASSERT_TRUE(put.run());
  Statement rows = database.prepare("SELECT a, b FROM t");
  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.text(0), std::string_view("x\0y", 3));
  EXPECT_EQ(rows.number(1), int64_t{1} << 60);
  ASSERT_TRUE(rows.next());
  EXPECT_EQ(rows.text(0), "");
  EXPECT_FALSE(rows.next());
  EXPECT_FALSE(rows.failed());
}

TEST(Database, AStatementThatMakesNoSenseFails) {
  Database database = inMemory();
  EXPECT_FALSE(database.run("nonsense"));
  EXPECT_NE(database.error(), "");
  Statement nonsense = database.prepare("nonsense");
  EXPECT_FALSE(nonsense.next());
  EXPECT_TRUE(nonsense.failed());
}

}  // namespace
}  // namespace quillpost::board
