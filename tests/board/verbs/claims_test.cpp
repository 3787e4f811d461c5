#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

TEST(Claims, WhyATaskCannotBeClaimed) {
  struct Row {
    const char* name;
    void (*prepare)(Desk&, const std::string& id);
    const char* words;
  };
  const Row rows[] = {
      {"held", [](Desk& desk, const std::string& id) { desk.claim("AA2", id); }, "held by AA2"},
      {"done",
       [](Desk& desk, const std::string& id) {
         desk.claim("AA2", id);
         desk.ask("AA2", "complete_task", Desk::on(id) + R"(,"summary":"x")");
       },
       "closed"},
      {"declined",
       [](Desk& desk, const std::string& id) { desk.ask("AA2", "reject_task", Desk::on(id)); },
       "closed"},
      {"waiting",
       [](Desk& desk, const std::string& id) {
         const std::string other = desk.add("other");
         desk.ask("AA2", "update_task",
                  Desk::on(id) + text::cat(R"(,"waitsOn":[")", other, R"("])"));
       },
       "not READY"},
      {"blocked",
       [](Desk& desk, const std::string& id) {
         desk.ask("AA2", "update_task",
                  Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
       },
       "blocked"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Desk desk;
    const std::string id = desk.add("one");
    row.prepare(desk, id);
    EXPECT_TRUE(wasRefused(desk.claim("BB3", id), row.words));
  }
}

TEST(Claims, AClaimOfOnesOwnIsRenewed) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.pass(500);
  EXPECT_TRUE(wasWritten(desk.claim("BB3", id)));
  EXPECT_EQ(desk.view("BB3", id).claimLeaseSecondsRemaining, 900);
  EXPECT_EQ(desk.task(id).claimAttempts, 1);
}

TEST(Completing, TakesTheClaimAndASummary) {
  Desk desk;
  const std::string id = desk.add("one");
  const std::string done = Desk::on(id) + R"(,"summary":"did it")";
  EXPECT_TRUE(wasRefused(desk.ask("BB3", "complete_task", done), "not claimed by you"));
  desk.claim("BB3", id);
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "complete_task", done), "held by BB3"));
  EXPECT_TRUE(
      wasRefused(desk.ask("BB3", "complete_task", Desk::on(id) + R"(,"summary":" ")"), "summary"));
  EXPECT_TRUE(wasWritten(desk.ask("BB3", "complete_task", done)));
  EXPECT_EQ(desk.view("AA2", id).state, "done");
  EXPECT_TRUE(wasWritten(desk.ask("BB3", "complete_task", done))) << "asked again, it is as done";
  EXPECT_THAT(desk.view("AA2", id).log, ElementsAre("[[gist]] did it"));
  EXPECT_TRUE(desk.owed("BB3").clear);
}

TEST(Completing, MakesReadyWhatWaitedAndTellsWhomItConcerns) {
  Desk desk({"AA2", "BB3", "CC4"});
  const std::string first = desk.add("first"), other = desk.add("other");
  const std::string waits = text::cat(R"("waitsOn":[")", first, R"("])");
  const std::string aimed =
      desk.add("aimed", text::cat(waits, R"(,"routedToFingerprint":")", desk.mark("CC4"), "\""));
  desk.claim("AA2", other);
  desk.ask("AA2", "update_task", Desk::on(other) + "," + waits);
  desk.claim("BB3", first);
  desk.settle();
  desk.ask("BB3", "complete_task", Desk::on(first) + R"(,"summary":"did it")");
  EXPECT_TRUE(desk.view("AA2", aimed).ready);
  EXPECT_THAT(desk.wakes("AA2"), ElementsAre("taskReady " + other));
  EXPECT_THAT(desk.wakes("CC4"), ElementsAre("taskReady " + aimed));
}

TEST(Completing, IsTakenBackByUpdatingTheTask) {
  Desk desk;
  const std::string id = desk.add("one");
  const std::string next = desk.add("next", text::cat(R"("waitsOn":[")", id, R"("])"));
  desk.claim("BB3", id);
  desk.ask("BB3", "complete_task", Desk::on(id) + R"(,"summary":"did it")");
  EXPECT_TRUE(desk.view("AA2", next).ready);
  EXPECT_TRUE(
      wasWritten(desk.ask("BB3", "update_task", Desk::on(id) + R"(,"summary":"did all of it")")));
  EXPECT_EQ(desk.task(id).state, TaskState::done) << "a better summary reopens nothing";
  EXPECT_TRUE(wasWritten(desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"it broke")")));
  EXPECT_TRUE(isHeldBy(desk.task(id), desk.mark("BB3")));
  EXPECT_EQ(desk.view("BB3", id).claimLeaseSecondsRemaining, 900);
  EXPECT_FALSE(desk.view("AA2", next).ready);
}

TEST(Reviews, AreAskedOfThoseWhoMayAndAnsweredByThemAlone) {
  Desk desk({"AA2", "BB3", "CC4"});
  desk.ask("CC4", "register", R"("role":"reviewer")");
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("BB3", "complete_task", Desk::on(id) + R"(,"summary":"did it")");
  EXPECT_TRUE(
      wasRefused(desk.ask("CC4", "verify_task", Desk::on(id) + R"(,"approve":true)"), "No review"));
  const auto request = desk.ask("BB3", "request_review", Desk::on(id));
  EXPECT_TRUE(wasWritten(request));
  EXPECT_EQ(request.notice, std::nullopt);
  EXPECT_EQ(desk.view("AA2", id).reviewState, "requested");
  EXPECT_TRUE(desk.isWoken("CC4", "reviewRequested " + id));
  EXPECT_FALSE(desk.isWoken("AA2", "reviewRequested " + id));
  EXPECT_TRUE(
      wasRefused(desk.ask("AA2", "verify_task", Desk::on(id) + R"(,"approve":true)"), "authority"));
  EXPECT_TRUE(wasRefused(desk.ask("CC4", "verify_task", Desk::on(id)), "approve"));
  EXPECT_TRUE(wasWritten(desk.ask("CC4", "verify_task", Desk::on(id) + R"(,"approve":false)")));
  EXPECT_EQ(desk.view("AA2", id).reviewState, "rejected");
  EXPECT_EQ(desk.view("AA2", id).reviewByFingerprint, desk.mark("CC4"));
  EXPECT_TRUE(desk.isWoken("BB3", "reviewVerdict " + id));
}

TEST(Reviews, CanBeAskedForWhileNobodyMayGiveThem) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  const auto request = desk.ask("BB3", "request_review", Desk::on(id));
  EXPECT_TRUE(wasWritten(request));
  EXPECT_EQ(request.notice, "Nobody who may give a verdict is here now.");
  EXPECT_EQ(desk.view("AA2", id).reviewState, "requested");
}

TEST(Reviews, OnesOwnWorkIsNotOnesToJudge) {
  Desk desk;
  desk.ask("BB3", "register", R"("role":"lead")");
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("BB3", "request_review", Desk::on(id));
  EXPECT_TRUE(
      wasRefused(desk.ask("BB3", "verify_task", Desk::on(id) + R"(,"approve":true)"), "own"));
}

TEST(Reviews, AreAimedAtAnAgentOrNarrowedToARole) {
  Desk desk({"AA2", "BB3", "CC4"});
  desk.ask("BB3", "register", R"("role":"lead")");
  desk.ask("CC4", "register", R"("role":"reviewer")");
  const std::string id = desk.add("one");
  desk.claim("AA2", id);
  desk.ask("AA2", "request_review", Desk::on(id) + R"(,"reviewOfRole":"lead")");
  EXPECT_TRUE(desk.isWoken("BB3", "reviewRequested " + id));
  EXPECT_FALSE(desk.isWoken("CC4", "reviewRequested " + id));
  desk.settle();
  desk.ask("AA2", "request_review",
           Desk::on(id) + text::cat(R"(,"reviewOfFingerprint":")", desk.mark("CC4"), "\""));
  EXPECT_FALSE(desk.isWoken("BB3", "reviewRequested " + id));
  EXPECT_TRUE(desk.isWoken("CC4", "reviewRequested " + id));
}

/// A task that BB3 has done, with CC4 as its reviewer.
struct ReviewedTask : Desk {
  std::string id;

  ReviewedTask() : Desk({"AA2", "BB3", "CC4"}), id(add("one")) {
    ask("CC4", "register", R"("role":"reviewer")");
    claim("BB3", id);
    complete();
    ask("BB3", "request_review", on(id));
  }
  void complete() { ask("BB3", "complete_task", on(id) + R"(,"summary":"did it")"); }
};

TEST(Reviews, AVerdictIsGoneWhenTheTaskIsReopenedAndTheNextCompletionIsJudgedAnew) {
  ReviewedTask desk;
  desk.ask("CC4", "verify_task", Desk::on(desk.id) + R"(,"approve":true)");
  desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"note":"it broke")");
  EXPECT_EQ(desk.view("AA2", desk.id).reviewState, std::nullopt);
  EXPECT_TRUE(desk.owed("CC4").clear) << "there is nothing to judge meanwhile";
  EXPECT_EQ(desk.view("AA2", desk.id).reviewByFingerprint, std::nullopt);
  desk.settle();
  desk.complete();
  EXPECT_TRUE(desk.isWoken("CC4", "reviewRequested " + desk.id));
  EXPECT_EQ(desk.owed("CC4").oweReply.size(), 1U);
  EXPECT_TRUE(
      wasWritten(desk.ask("CC4", "verify_task", Desk::on(desk.id) + R"(,"approve":false)")));
}

TEST(Reviews, AVerdictOnWorkUnderWayIsNotWornByItsCompletion) {
  ReviewedTask desk;
  desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"note":"it broke")");
  desk.ask("BB3", "request_review", Desk::on(desk.id));
  desk.ask("CC4", "verify_task", Desk::on(desk.id) + R"(,"approve":true)");
  EXPECT_EQ(desk.view("AA2", desk.id).reviewState, "verified");
  desk.settle();
  desk.complete();
  EXPECT_EQ(desk.view("AA2", desk.id).reviewState, "requested");
  EXPECT_EQ(desk.view("AA2", desk.id).reviewByFingerprint, std::nullopt);
  EXPECT_TRUE(desk.isWoken("CC4", "reviewRequested " + desk.id));
}

TEST(Reviews, ACompletionByThePersonIsJudgedAnewToo) {
  ReviewedTask desk;
  desk.ask("CC4", "verify_task", Desk::on(desk.id) + R"(,"approve":true)");
  desk.ask("BB3", "update_task", Desk::on(desk.id) + R"(,"note":"it broke")");
  desk.settle();
  EXPECT_TRUE(wasWritten(desk.person(personDone, Desk::on(desk.id))));
  EXPECT_EQ(desk.owed("CC4").oweReply.size(), 1u);
  EXPECT_TRUE(desk.isWoken("CC4", "reviewRequested " + desk.id));
}

TEST(Reviews, AimedAtOneWhoMayNotJudgeGiveANotice) {
  ReviewedTask desk;
  const auto response =
      desk.ask("BB3", "request_review",
               text::cat(Desk::on(desk.id), R"(,"reviewOfFingerprint":")", desk.mark("AA2"), "\""));
  EXPECT_TRUE(wasWritten(response));
  EXPECT_NE(response.notice.value_or("").find("neither reviewer nor lead"), std::string::npos);
}

TEST(Reviews, ABystandersRequestDoesNotReplaceAnothers) {
  ReviewedTask desk;
  EXPECT_TRUE(
      wasRefused(desk.ask("AA2", "request_review", Desk::on(desk.id)), "requested already"));
  EXPECT_EQ(desk.task(desk.id).reviewRequestedBy, desk.mark("BB3"));
}

TEST(Reopening, IsOpenToAnybodyOnceTheDoerIsGone) {
  ReviewedTask desk;
  const std::string broken = Desk::on(desk.id) + R"(,"note":"it broke")";
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "update_task", broken), "do not hold"));
  desk.ask("BB3", "unregister");
  EXPECT_TRUE(wasWritten(desk.ask("AA2", "update_task", broken)));
  EXPECT_TRUE(isHeldBy(desk.task(desk.id), desk.mark("AA2")));
}

TEST(Reopening, OfWhatThePersonDidIsThePersons) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.person(personDone, Desk::on(id));
  EXPECT_TRUE(wasRefused(desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"it broke")"),
                         "do not hold"));
  EXPECT_EQ(desk.task(id).state, TaskState::done);
}

TEST(Reopening, IsOpenToAnybodyWhileTheDoerIsAway) {
  ReviewedTask desk;
  desk.board.seats.touch(desk.seat("BB3").id)->leaseUntilMs = desk.at.nowMs + 1000;
  desk.pass(1);
  EXPECT_TRUE(
      wasWritten(desk.ask("AA2", "update_task", Desk::on(desk.id) + R"(,"note":"it broke")")));
}

}  // namespace
}  // namespace quillpost::board
