#include "board/desk.h"
#include "board/serving/reply.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string many(std::size_t count) { return std::string(count, 'x'); }

TEST(Tasks, HaveIdsInTheOrderOfFiling) {
  Desk desk;
  EXPECT_EQ(desk.add("one"), "t000001");
  EXPECT_EQ(desk.add("two"), "t000002");
  desk.ask("AA2", "delete_task", Desk::on("t000002"));
  EXPECT_EQ(desk.add("three"), "t000003") << "an id is never used again";
}

TEST(Tasks, TheSummaryIsSilentlyCut) {
  Desk desk;
  const auto response =
      desk.ask("AA2", "add_task", text::cat(R"("title":"x","summary":")", many(281), "\""));
  EXPECT_EQ(response.notice, std::nullopt);
  EXPECT_EQ(lastLine(desk.board, desk.task("t000001"))->text.size(), 280u);
}

TEST(Tasks, OneHandedOverWakesItsAgentAndReportsBack) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const std::string id = desk.add("one", R"("to":"bb3")");
  EXPECT_TRUE(desk.isWoken("BB3", "taskAssigned " + id));
  EXPECT_EQ(desk.view("BB3", id).routedToFingerprint, "BB3");
  EXPECT_EQ(desk.view("BB3", id).reportsToHandle, "AA2");
  EXPECT_EQ(desk.view("BB3", id).state, "open") << "claiming is still to be done";
  desk.claim("BB3", id);
  desk.ask("BB3", "complete_task", Desk::on(id) + R"(,"summary":"did it")");
  EXPECT_TRUE(desk.isWoken("AA2", "handedTaskDone " + id));
}

TEST(Tasks, OnlyOneThatNobodyHoldsCanBeHandedOver) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const std::string id = desk.add("one");
  desk.claim("AA2", id);
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "assign_task", Desk::on(id) + R"(,"to":"BB3")"), "held"));
  desk.ask("AA2", "release_task", Desk::on(id));
  EXPECT_TRUE(wasWritten(desk.ask("AA2", "assign_task", Desk::on(id) + R"(,"to":"BB3")")));
}

TEST(Declining, CutsTheReasonWithANotice) {
  Desk desk;
  const std::string id = desk.add("one");
  const auto response = desk.ask("BB3", "reject_task",
                                 text::cat(Desk::on(id), R"(,"releaseReason":")", many(241), "\""));
  EXPECT_THAT(response.notice.value_or(""), HasSubstr("240"));
  EXPECT_EQ(desk.view("AA2", id).state, "rejected");
  EXPECT_EQ(desk.view("AA2", id).log.back(), "BB3: declined: " + many(240));
}

TEST(Declining, IsNotForWhatAPeerHolds) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "reject_task", Desk::on(id)), "BB3"));
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "delete_task", Desk::on(id)), "BB3"));
  EXPECT_TRUE(wasWritten(desk.ask("BB3", "reject_task", Desk::on(id))));
}

TEST(Deleting, TakesTheTaskOffTheBoardAndThePersonCanPutItBack) {
  Desk desk;
  const std::string id = desk.add("one");
  EXPECT_TRUE(
      wasWritten(desk.ask("AA2", "delete_task", Desk::on(id) + R"(,"releaseReason":"slip")")));
  EXPECT_THAT(*desk.ask("AA2", "list_tasks").tasks, IsEmpty());
  EXPECT_EQ(desk.board.trash.find(id)->deleteReason, "slip");
  EXPECT_TRUE(wasWritten(desk.person(personRestore, Desk::on(id))));
  EXPECT_EQ(desk.view("AA2", id).title, "one");
  EXPECT_TRUE(desk.board.trash.empty());
}

TEST(Declining, TellsWhoHoldsATaskThatWaitsForIt) {
  Desk desk({"AA2", "BB3", "CC4"});
  const std::string id = desk.add("one");
  const std::string next = desk.add("next");
  desk.claim("BB3", next);
  desk.ask("BB3", "update_task", text::cat(Desk::on(next), R"(,"waitsOn":[")", id, R"("])"));
  EXPECT_TRUE(wasWritten(desk.ask("CC4", "reject_task", Desk::on(id))));
  EXPECT_TRUE(desk.isWoken("BB3", "taskRejected " + id));
  EXPECT_THAT(desk.wakes("AA2"), IsEmpty()) << "filing it asked for nothing";
}

TEST(Backlog, ReadingItMovesTheCursorAndNothingElseDoes) {
  Desk desk;
  desk.add("one");
  EXPECT_EQ(desk.ask("BB3", "list_tasks").rev, desk.board.counted().rev);
  EXPECT_EQ(desk.ask("BB3", "read_plan").rev, std::nullopt);
  EXPECT_EQ(desk.claim("BB3", "t000001").rev, std::nullopt);
}

TEST(Backlog, OfVeryManyClosedTasksTheLatestAreListed) {
  Desk desk;
  const std::string open = desk.add("open");
  for (int i = 0; i < 45'000; ++i) {
    Task task;
    task.title = "A task of the usual kind";
    task.state = TaskState::done;
    task.owner = desk.mark("AA2");
    fileTask(desk.board, std::move(task), "");
  }
  const auto tasks = *desk.ask("BB3", "list_tasks").tasks;
  ASSERT_EQ(tasks.size(), 20'001u);
  EXPECT_EQ(tasks.front().id, open);
  EXPECT_EQ(tasks.back().id, "t045001");
  TeamworkResponse response;
  response.tasks = tasks;
  EXPECT_LT(encodeSparsely(response)->size(), replyLimit);
}

}  // namespace
}  // namespace quillpost::board
