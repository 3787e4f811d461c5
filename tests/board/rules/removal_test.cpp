#include "board/rules/removal.h"

#include "board/desk.h"
#include "board/rules/readiness.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

TEST(Removal, ATaskThatOthersWaitOnIsNotDeleted) {
  Desk desk;
  const std::string one = desk.add("one");
  const std::string waits = text::cat(R"("waitsOn":[")", one, R"("])");
  const std::string two = desk.add("two", waits), three = desk.add("three", waits);
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "delete_task", Desk::on(one)), two + ", " + three));
  for (const std::string& id : {two, three}) desk.ask("AA2", "reject_task", Desk::on(id));
  EXPECT_TRUE(wasWritten(desk.ask("AA2", "delete_task", Desk::on(one))));
}

TEST(Removal, WhatIsReadyWithoutADeletedTaskIsTold) {
  Desk desk;
  const std::string one = desk.add("one");
  const std::string two = desk.add("two", text::cat(R"("waitsOn":[")", one, R"("])"));
  const int64_t rev = desk.board.counted().rev;
  deleteTask(desk.board, *desk.board.tasks.touch(one),
             {MoveKind::taskDeleted, one, std::string(human), desk.at.nowMs}, "");
  EXPECT_TRUE(isReady(desk.board, desk.task(two)));
  EXPECT_TRUE(hasMoved(desk.board, desk.seat("BB3"), {rev, {two}, false}));
}

TEST(Removal, NobodyOwesAVerdictOnADeclinedTask) {
  Desk desk;
  desk.ask("AA2", "register", R"("role":"reviewer")");
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("BB3", "request_review", Desk::on(id));
  EXPECT_EQ(desk.owed("AA2").oweReply.size(), 1u);
  desk.ask("BB3", "reject_task", Desk::on(id));
  EXPECT_TRUE(desk.owed("AA2").clear);
  EXPECT_TRUE(
      wasRefused(desk.ask("AA2", "verify_task", Desk::on(id) + R"(,"approve":true)"), "No review"));
}

TEST(Removal, ARestoredTaskComesBackAsItWas) {
  struct Row {
    const char* name;
    void (*prepare)(Desk&, const std::string& id);
    TaskState state;
    bool isHeld;
  };
  const Row rows[] = {
      {"open", [](Desk&, const std::string&) {}, TaskState::open, false},
      {"held", [](Desk& desk, const std::string& id) { desk.claim("AA2", id); }, TaskState::claimed,
       true},
      {"done",
       [](Desk& desk, const std::string& id) {
         desk.claim("AA2", id);
         desk.ask("AA2", "complete_task", Desk::on(id) + R"(,"summary":"did it")");
       },
       TaskState::done, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Desk desk;
    const std::string id = desk.add("one");
    row.prepare(desk, id);
    ASSERT_TRUE(wasWritten(desk.ask("AA2", "delete_task", Desk::on(id))));
    desk.pass(100);
    ASSERT_TRUE(wasWritten(desk.person(personRestore, Desk::on(id))));
    EXPECT_EQ(desk.task(id).state, row.state);
    EXPECT_EQ(desk.task(id).owner, row.isHeld ? desk.mark("AA2") : "");
    if (row.state == TaskState::claimed) {
      EXPECT_EQ(desk.view("AA2", id).claimLeaseSecondsRemaining, 900);
    }
  }
}

TEST(Removal, AClaimIsNotRestoredToWhomIsGone) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("BB3", "delete_task", Desk::on(id));
  desk.ask("BB3", "unregister");
  desk.person(personRestore, Desk::on(id));
  EXPECT_EQ(desk.task(id).state, TaskState::open);
  EXPECT_EQ(desk.task(id).owner, "");
}

TEST(Removal, WhatWouldCloseACircleIsNotRestored) {
  Desk desk;
  const std::string one = desk.add("one");
  const std::string two = desk.add("two", text::cat(R"("waitsOn":[")", one, R"("])"));
  desk.ask("AA2", "delete_task", Desk::on(two));
  desk.ask("AA2", "update_task", Desk::on(one) + text::cat(R"(,"waitsOn":[")", two, R"("])"));
  EXPECT_TRUE(wasRefused(desk.person(personRestore, Desk::on(two)), "wait on itself"));
  EXPECT_EQ(desk.board.trash.size(), 1u);
}

}  // namespace
}  // namespace quillpost::board
