#include "board/person/commanded.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

TEST(KeepCommand, ExportAndImportMakeTheSameBoard) {
  CommandedBoard board;
  board.type({"goal", "Ship it"});
  board.type({"add", "one", "--body", "A brief with \"quotes\" and\nlines"});
  board.type({"comment", "1", "a comment"});
  const std::string lines = board.directory().pathOf("board.jsonl");
  EXPECT_EQ(board.type({"export", lines}).output, "Exported to " + lines + ".\n");
  EXPECT_THAT(board.type({"export", lines}).errors, HasSubstr("cannot write"))
      << "nothing is ever written over";
  EXPECT_THAT(board.type({"import", lines}).errors, HasSubstr("stop it first"));

  const testing::TempDir other;
  const std::string fresh = other.pathOf("not/yet/there");
  EXPECT_EQ(typed(fresh, {"import", lines}).status, 0);
  const std::string again = other.pathOf("again.jsonl");
  EXPECT_EQ(typed(fresh, {"export", again}).status, 0) << "without a board that is served";
  EXPECT_EQ(testing::readFile(again), testing::readFile(lines));
  EXPECT_THAT(typed(fresh, {"import", lines}).errors, HasSubstr("already"));
  EXPECT_EQ(typed(fresh, {"check"}).status, 0) << "and is as it was";
}

TEST(KeepCommand, ABackupOfAServedBoardIsABoard) {
  CommandedBoard board;
  board.type({"add", "one"});
  const testing::TempDir other;
  const std::string copy = other.pathOf("board.db");
  EXPECT_EQ(board.type({"backup", copy}).status, 0);
  EXPECT_THAT(board.type({"backup", copy}).errors, HasSubstr("there already"));
  EXPECT_EQ(typed(other.path(), {"check"}).output, "All is well with the board's file.\n");
  EXPECT_EQ(board.type({"check"}).output, "All is well with the board's file.\n");
  const std::string sameFile = board.directory().path() + "/./board.db";
  EXPECT_EQ(board.type({"check", "--db", sameFile}).status, 0) << "however it is written";
  EXPECT_EQ(board.stop(), 0);
  EXPECT_EQ(board.type({"check"}).status, 0);
}

TEST(KeepCommand, AFileThatCannotBeReadIsToldOf) {
  const testing::TempDir dir;
  EXPECT_THAT(typed(dir.path(), {"check"}).errors, HasSubstr("there is no board in"));
  EXPECT_FALSE(std::filesystem::exists(dir.pathOf("board.db"))) << "and none is made";
  dir.write("board.db", "this is no database, however long it may be, and never was one");
  EXPECT_EQ(typed(dir.path(), {"check"}).status, 1);
  EXPECT_THAT(
      typed(dir.path(), {"import", dir.pathOf("none"), "--db", dir.pathOf("new.db")}).errors,
      HasSubstr("cannot read"));
  dir.write("bad.jsonl", "{\"thread\":1}\n");
  EXPECT_THAT(
      typed(dir.path(), {"import", dir.pathOf("bad.jsonl"), "--db", dir.pathOf("new.db")}).errors,
      HasSubstr("line 1 is no row of a board"));
  EXPECT_FALSE(std::filesystem::exists(dir.pathOf("new.db"))) << "nothing is left of it";
}

}  // namespace
}  // namespace quillpost::board
