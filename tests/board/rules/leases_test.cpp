#include "board/rules/leases.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Leases, AClaimLapsesOnlyWhenItsTimeIsOver) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.pass(800);
  desk.ask("BB3", "list_tasks");  // keeps the seat, not the claim
  desk.pass(99);
  EXPECT_EQ(desk.task(id).state, TaskState::claimed);
  desk.pass(1);
  EXPECT_EQ(desk.task(id).state, TaskState::open);
  EXPECT_EQ(desk.task(id).owner, "");
  EXPECT_TRUE(desk.isWoken("BB3", "claimExpired " + id));
  EXPECT_FALSE(desk.isWoken("BB3", "claimExpiring " + id)) << "it is no longer about to";
}

TEST(Leases, TheHolderIsWarnedOnceWhenLittleIsLeft) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.pass(779);
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
  desk.pass(1);
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("claimExpiring " + id));
  desk.settle();
  desk.pass(10);
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
}

TEST(Leases, AShortLeaseIsWarnedOfInItsLastQuarter) {
  EXPECT_EQ((Moment{0, 900'000}.warningMs()), 120'000);
  EXPECT_EQ((Moment{0, 8'000}.warningMs()), 2'000);
}

TEST(Leases, AHeartbeatRenewsEveryClaimAndTakesTheWarningBack) {
  Desk desk;
  const std::string one = desk.add("one"), two = desk.add("two");
  desk.claim("BB3", one);
  desk.claim("BB3", two);
  desk.pass(800);
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("claimExpiring " + one, "claimExpiring " + two));
  desk.ask("BB3", "heartbeat");
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty());
  desk.pass(700);
  EXPECT_EQ(desk.task(one).state, TaskState::claimed);
  EXPECT_EQ(desk.view("BB3", two).claimLeaseSecondsRemaining, 200);
}

TEST(Leases, AnAgentThatFallsSilentLeavesTheRosterAndACallBringsItBack) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.pass(900);
  EXPECT_FALSE(isLive(desk.seat("BB3")));
  const std::string mark = desk.mark("BB3");
  EXPECT_TRUE(wasWritten(desk.claim("BB3", id)));
  EXPECT_TRUE(isLive(desk.seat("BB3")));
  EXPECT_EQ(desk.mark("BB3"), mark);
  EXPECT_THAT(desk.wakes("BB3"), IsEmpty()) << "what it claims again has not expired";
}

TEST(Leases, ReadingWritesTheSeatOnlyWhenATenthOfItsLeaseIsGone) {
  Desk desk;
  board::settle(desk.board);
  desk.pass(89);
  desk.ask("BB3", "list_tasks");
  EXPECT_TRUE(desk.board.seats.isSaved());
  desk.pass(1);
  desk.ask("BB3", "list_tasks");
  EXPECT_FALSE(desk.board.seats.isSaved());
}

TEST(Leases, TheNextLapseIsTheEarliestOfSilenceWarningsAndEnds) {
  Desk desk({"AA2"});
  EXPECT_EQ(nextLapse(desk.board), desk.at.nowMs + quietAfterMs);
  desk.claim("AA2", desk.add("one"));
  desk.pass(600);
  EXPECT_EQ(nextLapse(desk.board), desk.at.nowMs + 180'000);
  desk.pass(180);
  EXPECT_EQ(nextLapse(desk.board), desk.at.nowMs + 120'000);
  desk.pass(120);
  EXPECT_EQ(nextLapse(desk.board), std::nullopt) << "nobody is here";
}

TEST(Leases, ABoardThatWasAwayForgivesWhatLapsedMeanwhile) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.at.nowMs += 100'000'000;
  forgiveAbsence(desk.board, desk.at);
  lapse(desk.board, desk.at);
  EXPECT_EQ(desk.task(id).owner, desk.mark("BB3"));
  EXPECT_EQ(desk.view("BB3", id).claimLeaseSecondsRemaining, 900);
}

TEST(Leases, AStandingRequestGetsTheTaskHoweverItBecomesFree) {
  struct Row {
    const char* name;
    void (*free)(Desk&, const std::string& id);
  };
  const Row rows[] = {
      {"released",
       [](Desk& desk, const std::string& id) { desk.ask("BB3", "release_task", Desk::on(id)); }},
      {"left", [](Desk& desk, const std::string&) { desk.ask("BB3", "unregister"); }},
      {"blocked",
       [](Desk& desk, const std::string& id) {
         desk.ask("BB3", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"?")");
       }},
      {"parked",
       [](Desk& desk, const std::string& id) {
         desk.ask("BB3", "update_task", Desk::on(id) + R"(,"parkReason":"lunch")");
       }},
      {"parked in a wait",
       [](Desk& desk, const std::string&) {
         desk.ask("BB3", "heartbeat", R"("waiting":true,"standDown":false,"parkReason":"lunch")");
       }},
      {"lapsed",
       [](Desk& desk, const std::string&) {
         desk.pass(500);
         desk.ask("AA2", "heartbeat");
         desk.pass(400);
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Desk desk;
    const std::string id = desk.add("one");
    desk.claim("BB3", id);
    EXPECT_TRUE(wasWritten(
        desk.ask("AA2", "request_release", Desk::on(id) + R"(,"releaseReason":"I can")")));
    EXPECT_EQ(desk.task(id).owner, desk.mark("BB3")) << "it stands";
    EXPECT_TRUE(desk.isWoken("BB3", "releaseRequested " + id));
    EXPECT_EQ(desk.view("BB3", id).pendingReleaseReason, "I can");
    EXPECT_EQ(desk.owed("BB3").releaseAsks.size(), 1u);
    row.free(desk, id);
    EXPECT_TRUE(isHeldBy(desk.task(id), desk.mark("AA2")));
    EXPECT_TRUE(desk.isWoken("AA2", "releaseGranted " + id));
    EXPECT_THAT(desk.task(id).releaseAsks, IsEmpty());
  }
}

TEST(Leases, ABlockedHolderLosesTheTaskToWhoeverAsks) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
  const auto response = desk.ask("AA2", "request_release", Desk::on(id));
  EXPECT_THAT(response.message.value_or(""), ::testing::HasSubstr("you hold it now"));
  EXPECT_TRUE(isHeldBy(desk.task(id), desk.mark("AA2")));
  EXPECT_TRUE(desk.isWoken("BB3", "claimHandedOver " + id));
  EXPECT_FALSE(desk.isWoken("AA2", "releaseGranted " + id)) << "the answer says so already";
  EXPECT_EQ(desk.owed("BB3").yourBlockersOpen, std::vector<std::string>{id});
}

TEST(Leases, ADeletedTaskIsForgottenAfterSevenDays) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("AA2", "delete_task", Desk::on(id));
  desk.at.nowMs += trashKeptMs - 1;
  lapse(desk.board, desk.at);
  EXPECT_EQ(desk.board.trash.size(), 1u);
  desk.pass(1);
  EXPECT_TRUE(desk.board.trash.empty());
}

}  // namespace
}  // namespace quillpost::board
