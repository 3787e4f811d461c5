#include "board/rules/hook.h"

#include "board/desk.h"

#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

bool isHeldBack(Desk& desk) { return *desk.ask("BB3", "wake_query").wakePending; }

/// The agent reads what waits for it, as with a wait.
void read(Desk& desk) { forgetDelivered(desk.board, deliveryOf(desk.board, desk.seat("BB3"))); }

TEST(Hook, WithNothingOwedOnceIsEnough) {
  Desk desk;
  EXPECT_FALSE(isHeldBack(desk));
  leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", "x", 0});
  EXPECT_TRUE(isHeldBack(desk));
  EXPECT_FALSE(isHeldBack(desk)) << "though it has not been read";
  leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", "y", 0});
  EXPECT_TRUE(isHeldBack(desk)) << "something new has come";
}

TEST(Hook, ADebtHoldsAnAgentBackThreeTimesAndThenLetsItGo) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"see?","tags":["BB3"])");
  read(desk);
  for (int time = 0; time < 3; ++time) EXPECT_TRUE(isHeldBack(desk)) << time;
  EXPECT_FALSE(isHeldBack(desk));
  EXPECT_FALSE(isHeldBack(desk));
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"and?","tags":["BB3"])");
  EXPECT_TRUE(isHeldBack(desk)) << "something new has come";
}

TEST(Hook, ANewDebtCountsByItselfThoughItWasReadBeforeTheAgentStopped) {
  Desk desk;
  const std::string id = desk.add("one");
  for (int debt = 0; debt < 2; ++debt) {
    desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"see?","tags":["BB3"])");
    read(desk);
    for (int time = 0; time < 3; ++time) EXPECT_TRUE(isHeldBack(desk)) << debt << time;
    EXPECT_FALSE(isHeldBack(desk)) << debt;
  }
}

TEST(Hook, ReadingWhatItWasHeldBackForIsNothingNew) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"see?","tags":["BB3"])");
  EXPECT_TRUE(isHeldBack(desk));
  read(desk);
  EXPECT_TRUE(isHeldBack(desk));
  EXPECT_TRUE(isHeldBack(desk));
  EXPECT_FALSE(isHeldBack(desk));
}

TEST(Hook, AMoveOfTheAgentBeginsTheCountAnewAndReadingDoesNot) {
  Desk desk;
  const std::string id = desk.add("one"), other = desk.add("other");
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"see?","tags":["BB3"])");
  read(desk);
  for (int time = 0; time < 3; ++time) isHeldBack(desk);
  desk.ask("BB3", "read_task", Desk::on(id));
  EXPECT_FALSE(isHeldBack(desk));
  desk.claim("BB3", other);
  EXPECT_TRUE(isHeldBack(desk));
  desk.ask("BB3", "comment_task", Desk::on(id) + R"(,"note":"seen")");
  EXPECT_FALSE(isHeldBack(desk)) << "nothing is owed any more";
}

TEST(Hook, AnOlderWakeThatNobodyToldOfHoldsAnAgentBackThoughANewerOneWasCarried) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("BB3", "watch_task", Desk::on(id));
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"look")");
  desk.person(personSay, R"("to":"BB3","body":"Lunch")");
  const std::string said = wakesOf(desk.board, desk.seat("BB3")).back()->id;
  forgetDelivered(desk.board, {"", "s-BB3", "", "", said});
  EXPECT_TRUE(isHeldBack(desk));
  EXPECT_FALSE(isHeldBack(desk)) << "it has been told now";
}

}  // namespace
}  // namespace quillpost::board
