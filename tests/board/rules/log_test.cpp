#include "board/rules/log.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Log, EveryLineSaysWhenItWasWritten) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"early")");
  const int64_t early = desk.at.nowMs;
  desk.pass(5);
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"late")");
  const auto lines = linesOf(desk.board, id);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0]->atMs, early);
  EXPECT_EQ(lines[1]->atMs, early + 5000);
}

TEST(Log, ALinesIdIsItsTasksAndItsNumber) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"first")");
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"second")");
  const auto lines = linesOf(desk.board, id);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0]->id, text::cat(id, "/0000001"));
  EXPECT_EQ(lines[1]->id, text::cat(id, "/0000002"));
}

TEST(Log, LinesStayInOrderBeyondTheirTenth) {
  Desk desk;
  const std::string id = desk.add("one");
  std::vector<std::string> written;
  for (int i = 1; i <= 12; ++i) {
    written.push_back(text::cat("AA2: ", i));
    desk.ask("AA2", "comment_task", Desk::on(id) + text::cat(R"(,"note":")", i, "\""));
  }
  EXPECT_EQ(desk.log(id), written);
}

TEST(Log, ABriefIsKeptApartAndAnEmptyOneNotAtAll) {
  Desk desk;
  const std::string id = desk.add("one", R"("body":"a brief")");
  EXPECT_EQ(briefOf(desk.board, id), "a brief");
  desk.ask("AA2", "update_task", Desk::on(id) + R"(,"body":"")");
  EXPECT_EQ(briefOf(desk.board, id), "");
  EXPECT_TRUE(desk.board.briefs.empty());
}

TEST(Log, WhatWasWrittenOnADeletedTaskLastsAsLongAsTheTaskCanBePutBack) {
  Desk desk;
  const std::string id = desk.add("one", R"("body":"a brief","summary":"gist")");
  desk.ask("AA2", "delete_task", Desk::on(id));
  desk.person(personRestore, Desk::on(id));
  EXPECT_EQ(briefOf(desk.board, id), "a brief");
  EXPECT_THAT(desk.log(id), ElementsAre("[[gist]] gist"));
  desk.ask("AA2", "delete_task", Desk::on(id));
  desk.pass(trashKeptMs / 1000);
  EXPECT_EQ(briefOf(desk.board, id), "");
  EXPECT_THAT(desk.log(id), IsEmpty());
}

}  // namespace
}  // namespace quillpost::board
