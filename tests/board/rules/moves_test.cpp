#include "board/rules/moves.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Moves, EveryChangeHasARevisionOfItsOwn) {
  Desk desk;
  const int64_t before = desk.board.counted().rev;
  record(desk.board, {MoveKind::goalSet, "", "human"});
  record(desk.board, {MoveKind::goalSet, "", "human"});
  EXPECT_EQ(desk.board.counted().rev, before + 2);
  EXPECT_EQ(std::prev(desk.board.changes.end())->second.rev, before + 2);
}

TEST(Moves, OnlyTheLatestChangesAreKeptInMemory) {
  Desk desk;
  for (std::size_t i = 0; i < changesKept + 50; ++i)
    record(desk.board, {MoveKind::goalSet, "", ""});
  board::settle(desk.board);
  EXPECT_EQ(desk.board.changes.size(), changesKept);
  EXPECT_EQ(std::prev(desk.board.changes.end())->second.rev, desk.board.counted().rev);
}

TEST(Moves, AChangeSaysWhenItWasWhoseAndWhat) {
  Desk desk;
  desk.pass(7);
  const std::string id = desk.add("one");
  desk.ask("BB3", "comment_task", Desk::on(id) + R"(,"note":"hm")");
  const Change& change = std::prev(desk.board.changes.end())->second;
  EXPECT_EQ(change.kind, MoveKind::taskCommented);
  EXPECT_EQ(change.taskID, id);
  EXPECT_EQ(change.by, desk.mark("BB3"));
  EXPECT_EQ(change.byName, "BB3");
  EXPECT_EQ(change.atMs, desk.at.nowMs);
  EXPECT_EQ(change.what, "hm");
}

TEST(Moves, WatchersAreToldOfEveryMoveButTheirOwn) {
  Desk desk({"AA2", "BB3", "CC4"});
  const std::string id = desk.add("one");
  desk.ask("CC4", "watch_task", Desk::on(id));
  desk.claim("BB3", id);
  EXPECT_THAT(desk.wakes("CC4"), ElementsAre("taskWatched " + id));
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
  desk.settle();
  desk.ask("CC4", "comment_task", Desk::on(id) + R"(,"note":"hm")");
  EXPECT_THAT(desk.wakes("CC4"), IsEmpty());
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("taskWatched " + id)) << "a claim watches too";
  EXPECT_THAT(desk.wakes("AA2"), IsEmpty());
}

TEST(Moves, WhoeverIsWokenByNameIsNotToldTwice) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("BB3", "watch_task", Desk::on(id));
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"look","tags":["BB3"])");
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("mentioned " + id));
}

TEST(Moves, AWatcherIsToldOfEachMove) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("BB3", "watch_task", Desk::on(id));
  for (int i = 0; i < 3; ++i) desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"x")");
  const std::string told = "taskWatched " + id;
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre(told, told, told));
}

TEST(Moves, AnExplicitWatchOutlivesTheClaim) {
  struct Row {
    const char* name;
    bool explicitly;
    bool stays;
  };
  for (const Row& row : {Row{"by the claim", false, false}, Row{"asked for", true, true}}) {
    SCOPED_TRACE(row.name);
    Desk desk;
    const std::string id = desk.add("one");
    desk.claim("BB3", id);
    if (row.explicitly) desk.ask("BB3", "watch_task", Desk::on(id));
    EXPECT_EQ(desk.view("AA2", id).watchers.front().isAuto, !row.explicitly);
    desk.ask("BB3", "release_task", Desk::on(id));
    EXPECT_EQ(desk.view("AA2", id).watchers.size(), row.stays ? 1u : 0u);
  }
}

TEST(Moves, UnwatchEndsEitherWatchAndItsNotice) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"x")");
  EXPECT_TRUE(wasWritten(desk.ask("BB3", "unwatch_task", Desk::on(id))));
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"y")");
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
}

}  // namespace
}  // namespace quillpost::board
