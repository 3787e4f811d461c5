#include "board/rules/wakes.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

TEST(Wakes, DifferentWakesOfOneKindAllStay) {
  Desk desk;
  for (const char* summary : {"one", "two", "one"})
    wake(desk.board, desk.seat("BB3"), {WakeKind::discussionReply, "t000001", summary});
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("discussionReply t000001", "discussionReply t000001"));
}

TEST(Wakes, TooManyWakesGiveWayTheOldestFirst) {
  Desk desk;
  wake(desk.board, desk.seat("BB3"), {WakeKind::mentioned, "t000001", "first"});
  for (std::size_t i = 0; i < wakesKept; ++i)
    wake(desk.board, desk.seat("BB3"), {WakeKind::taskAssigned, text::cat("x", i), ""});
  EXPECT_EQ(desk.wakes("BB3").size(), wakesKept);
  EXPECT_EQ(desk.wakes("BB3").front(), "taskAssigned x0");
}

TEST(Wakes, WhatWasCarriedIsForgottenAndWhatCameLaterIsNot) {
  Desk desk;
  wake(desk.board, desk.seat("BB3"), {WakeKind::mentioned, "t000001", "early"});
  leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", "early", 0});
  const Delivery delivery = deliveryOf(desk.board, desk.seat("BB3"));
  wake(desk.board, desk.seat("BB3"), {WakeKind::mentioned, "t000002", "late"});
  leaveMessage(desk.board, desk.seat("BB3"), {"AA2", "", "late", 0});
  forgetDelivered(desk.board, delivery);
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("mentioned t000002"));
  const auto messages = messagesOf(desk.board, desk.seat("BB3"));
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages.front()->text, "late");
}

TEST(Wakes, AfterTwentyWatchNoticesTheRestIsCounted) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("BB3", "watch_task", Desk::on(id));
  for (int i = 0; i < 25; ++i) desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"x")");
  const auto wakes = wakesOf(desk.board, desk.seat("BB3"));
  ASSERT_EQ(wakes.size(), 21u);
  EXPECT_EQ(wakes.back()->summary, "5 more moves of tasks that you watch");
  EXPECT_EQ(wakes.back()->taskID, "");
}

TEST(Wakes, WhatThePersonSaysRidesOnWhateverTheAgentDoesNext) {
  struct Row {
    const char* method;
    const char* members;
    std::string (*place)(const TeamworkResponse&);
  };
  const auto notice = [](const TeamworkResponse& response) { return response.notice.value_or(""); };
  const auto message = [](const TeamworkResponse& response) {
    return response.message.value_or("");
  };
  const auto owed = [](const TeamworkResponse& response) {
    return response.obligations->oweReply.at(0).question;
  };
  const Row rows[] = {
      {"add_task", R"("title":"x")", notice},
      {"read_task", R"("taskID":"t000001")", notice},
      {"claim_task", "", message},
      {"read_messages", "", message},
      {"list_tasks", "", owed},
      {"list_agents", "", owed},
      {"read_plan", "", owed},
      {"register", "", owed},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.method);
    Desk desk;
    desk.add("one");
    desk.person(personSay, R"("to":"BB3","body":"Stop the presses")");
    TeamworkResponse response = desk.ask("BB3", row.method, row.members);
    response.obligations = desk.owed("BB3");
    const std::string last = carrySaid(desk.board, desk.seat("BB3"), response);
    EXPECT_THAT(row.place(response), ::testing::HasSubstr("The human says: Stop the presses"));
    desk.person(personSay, R"("to":"BB3","body":"Later")");
    forgetDelivered(desk.board, {"", "s-BB3", "", "", last});
    EXPECT_EQ(desk.wakes("BB3").size(), 1u) << "what was said later still waits";
  }
}

TEST(Wakes, WhatThePersonSaysWaitsWhereTheAnswerHasNoRoom) {
  Desk desk;
  desk.person(personSay, R"("to":"BB3","body":"Stop")");
  TeamworkResponse response = desk.ask("BB3", "wake_query");
  EXPECT_EQ(carrySaid(desk.board, desk.seat("BB3"), response), "");
  EXPECT_THAT(desk.wakes("BB3"), ElementsAre("humanSaid"));
}

TEST(Wakes, AnAnswerCarriesAsManyAsItHasRoomForAndTheNextTheNext) {
  Desk desk;
  const std::string large(wakeBytesCarried - 1, 'x');
  for (const char* last : {"1", "2"})
    wake(desk.board, desk.seat("BB3"), {WakeKind::humanSaid, "", large + last});
  const Delivery delivery = deliveryOf(desk.board, desk.seat("BB3"));
  EXPECT_EQ(feedFor(desk.board, desk.seat("BB3"), {}, desk.at).wakeReasons.size(), 1u);
  TeamworkResponse response = written("Done.");
  EXPECT_EQ(carrySaid(desk.board, desk.seat("BB3"), response), delivery.wakesUpTo);
  EXPECT_EQ(response.notice, large + "1");
  forgetDelivered(desk.board, delivery);
  ASSERT_EQ(desk.wakes("BB3").size(), 1u);
  EXPECT_EQ(wakesOf(desk.board, desk.seat("BB3")).front()->summary, large + "2");
}

TEST(Wakes, WhatThePersonSaysGivesWayToNothingElse) {
  Desk desk;
  desk.person(personSay, R"("to":"BB3","body":"Stop")");
  for (std::size_t i = 0; i < 2 * wakesKept; ++i)
    wake(desk.board, desk.seat("BB3"), {WakeKind::mentioned, "", text::cat(i)});
  EXPECT_EQ(desk.wakes("BB3").size(), wakesKept);
  EXPECT_EQ(desk.wakes("BB3").front(), "humanSaid");
}

}  // namespace
}  // namespace quillpost::board
