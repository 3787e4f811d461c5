#include "board/person/live.h"

#include "board/desk.h"
#include "board/person/sheets.h"
#include "harness/paths.h"
#include "harness/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillpost::board {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

Sheet liveOf(const Desk& desk, std::optional<int64_t> since = std::nullopt) {
  const Board* const boards[] = {&desk.board};
  return liveSheet(boards, since, desk.at);
}

std::vector<std::string> cells(const Sheet& sheet, std::string_view section,
                               std::string_view column) {
  return columnOf(sheet, section, column);
}

TEST(LiveSheet, FirstTellsTheWholeBoard) {
  Desk desk;
  desk.person(personGoal, R"("body":"Ship it")");
  desk.add("one", R"("resources":["till","site"],"priority":3)");
  desk.claim("AA2", desk.add("two"));
  const Sheet sheet = liveOf(desk);
  EXPECT_EQ(sheet.rev, desk.board.counted().rev);
  EXPECT_THAT(cells(sheet, "thread", "goal"), ElementsAre("Ship it"));
  EXPECT_THAT(cells(sheet, "thread", "since"), ElementsAre(""));
  EXPECT_THAT(cells(sheet, "thread", "state"), ElementsAre("open"));
  EXPECT_THAT(cells(sheet, "tasks", "id"), ElementsAre("t000002", "t000001"));
  EXPECT_THAT(cells(sheet, "tasks", "state"), ElementsAre("working", "ready"));
  EXPECT_THAT(cells(sheet, "tasks", "holder"), ElementsAre("AA2", ""));
  EXPECT_THAT(cells(sheet, "tasks", "resources"), ElementsAre("", "till\nsite"));
  EXPECT_THAT(cells(sheet, "tasks", "leaseUntil"),
              ElementsAre(text::cat(desk.at.nowMs + desk.at.leaseMs), ""));
  EXPECT_THAT(cells(sheet, "agents", "handle"), ElementsAre("AA2", "BB3"));
  EXPECT_THAT(cells(sheet, "agents", "lastDeed"), ElementsAre(text::cat(desk.at.nowMs), ""));
  EXPECT_EQ(sheet.find("moves"), nullptr);
}

TEST(LiveSheet, ThenTellsWhatMovedAndWhatThatMadeReady) {
  Desk desk;
  const std::string first = desk.add("first");
  desk.add("other");
  const std::string then = desk.add("then", text::cat(R"("waitsOn":[")", first, R"("])"));
  const int64_t rev = desk.board.counted().rev;
  EXPECT_THAT(cells(liveOf(desk, rev), "tasks", "id"), IsEmpty());
  desk.person(personDone, Desk::on(first));
  const Sheet sheet = liveOf(desk, rev);
  EXPECT_THAT(cells(sheet, "thread", "since"), ElementsAre(text::cat(rev)));
  EXPECT_THAT(cells(sheet, "tasks", "id"), ElementsAre(first, then));
  EXPECT_THAT(cells(sheet, "tasks", "state"), ElementsAre("done", "ready"));
  EXPECT_THAT(cells(sheet, "moves", "move"), ElementsAre("taskCompleted", "taskReady"));
}

TEST(LiveSheet, ATaskThatWaitsOnAReopenedOneIsToldAgain) {
  Desk desk;
  const std::string first = desk.add("first");
  const std::string then = desk.add("then", text::cat(R"("waitsOn":[")", first, R"("])"));
  desk.person(personDone, Desk::on(first));
  const int64_t rev = desk.board.counted().rev;
  desk.person(personReopen, Desk::on(first));
  EXPECT_THAT(cells(liveOf(desk, rev), "tasks", "state"), ElementsAre("ready", "waiting"));
}

TEST(LiveSheet, WhatIsDeletedIsGoneAndCanBeSeenAmongTheDeleted) {
  Desk desk;
  const std::string id = desk.add("one");
  const int64_t rev = desk.board.counted().rev;
  desk.person(personDelete, text::cat(Desk::on(id), R"(,"releaseReason":"twice")"));
  const Sheet sheet = liveOf(desk, rev);
  EXPECT_THAT(cells(sheet, "tasks", "id"), IsEmpty());
  EXPECT_THAT(cells(sheet, "gone", "id"), ElementsAre(id));
  EXPECT_THAT(cells(sheet, "deleted", "title"), ElementsAre("one"));
  EXPECT_THAT(cells(liveOf(desk), "deleted", "reason"), ElementsAre("twice"));
}

TEST(LiveSheet, LeasesComeWithEveryAnswerSinceTheyAreRenewedWithoutAMove) {
  Desk desk;
  desk.claim("AA2", desk.add("one"));
  const int64_t rev = desk.board.counted().rev;
  desk.at.nowMs += 300'000;
  desk.ask("AA2", "heartbeat");
  const Sheet sheet = liveOf(desk, rev);
  EXPECT_EQ(sheet.rev, rev);
  EXPECT_THAT(cells(sheet, "leases", "leaseUntil"),
              ElementsAre(text::cat(desk.at.nowMs + desk.at.leaseMs)));
}

TEST(LiveSheet, AnUnknownOrForgottenRevisionIsAnsweredWithEverything) {
  Desk desk;
  desk.add("one");
  for (const int64_t since : {int64_t{-1}, desk.board.counted().rev + 1, INT64_MAX, INT64_MIN}) {
    EXPECT_THAT(cells(liveOf(desk, since), "thread", "since"), ElementsAre("")) << since;
    EXPECT_THAT(cells(liveOf(desk, since), "tasks", "id"), ElementsAre("t000001")) << since;
  }
  for (int i = 0; i < 5; ++i) desk.person(personSquad, R"("approve":true)");
  settle(desk.board);
  desk.board.changes.forgetAllBut(3);
  const int64_t last = desk.board.counted().rev;
  EXPECT_THAT(cells(liveOf(desk, last - 3), "thread", "since"), ElementsAre(text::cat(last - 3)));
  EXPECT_THAT(cells(liveOf(desk, last - 4), "thread", "since"), ElementsAre(""));
}

TEST(LiveSheet, OfWhatIsDoneTheLatestAreToldAndAllAreCounted) {
  Desk desk;
  for (std::size_t i = 0; i < finishedTold + 2; ++i) {
    Task task;
    task.id = taskID(static_cast<int64_t>(i) + 1);
    task.title = "done";
    task.state = TaskState::done;
    desk.board.tasks.put(task);
  }
  const Sheet sheet = liveOf(desk);
  EXPECT_EQ(cells(sheet, "tasks", "id").size(), finishedTold);
  EXPECT_EQ(cells(sheet, "tasks", "id").back(), "t000003");
  EXPECT_THAT(cells(sheet, "thread", "finished"), ElementsAre(text::cat(finishedTold + 2)));
}

TEST(LiveSheet, TellsWhatNeedsThePersonOnEveryThread) {
  Desk one, two;
  two.board.editThread().name = "other";
  two.ask("AA2", "set_goal", R"("name":"x")");
  two.ask("AA2", "propose_goal_complete");
  const Board* const boards[] = {&one.board, &two.board};
  const Sheet sheet = liveSheet(boards, std::nullopt, one.at);
  EXPECT_THAT(cells(sheet, "needs", "thread"), ElementsAre("other"));
  EXPECT_THAT(cells(sheet, "threads", "thread"), ElementsAre("main", "other"));
}

TEST(LiveSheet, OfAnEmptyFileHasNothing) {
  const Sheet sheet = liveSheet({}, 7, {});
  EXPECT_EQ(sheet.rev, 0);
  EXPECT_THAT(sheet.sections, IsEmpty());
}

TEST(LiveSheet, ADiscussionTellsItsLastWordAndWhoseTurnItIs) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const auto opened =
      desk.ask("AA2", "open_discussion", R"("body":"Oak or steel?","tags":["BB3"])");
  ASSERT_TRUE(desk.board.discussions.size() == 1) << opened.message.value_or("");
  const Sheet sheet = liveOf(desk);
  EXPECT_THAT(cells(sheet, "debates", "question"), Contains("Oak or steel?"));
  EXPECT_THAT(cells(sheet, "debates", "state"), ElementsAre("open"));
}

TEST(LiveSheet, ItsTablesAndColumnsAreDocumented) {
  Desk one, two;
  one.add("one");
  const Board* const boards[] = {&one.board, &two.board};
  const std::string page = testing::readFile(testing::inSources("docs/protocol.md"));
  for (const std::optional<int64_t> since : {std::optional<int64_t>(), std::optional<int64_t>(0)}) {
    for (const Section& section : liveSheet(boards, since, one.at).sections) {
      EXPECT_THAT(page, HasSubstr(text::cat("\n| `", section.name, "` | ",
                                            text::join(section.columns, ", "), " |")));
    }
  }
  EXPECT_NE(liveSheet(boards, 0, one.at).find("moves"), nullptr);
}

}  // namespace
}  // namespace quillpost::board
