#include "board/rules/debates.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

const std::string firstID = R"("discussionID":"d000001")";

const TeamworkDiscussion& debate(const Desk& desk) {
  return *desk.board.discussions.find("d000001");
}

void reply(Desk& desk, std::string_view handle, std::string_view words) {
  desk.ask(handle, "reply_discussion", text::cat(firstID, R"(,"body":")", words, "\""));
}

TEST(Debates, TheTurnPassesBetweenTwo) {
  Desk desk;
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["BB3"])");
  EXPECT_THAT(debate(desk).owingParties, ElementsAre(desk.mark("BB3")));
  EXPECT_TRUE(desk.isWoken("BB3", "discussionOpened"));
  EXPECT_EQ(desk.owed("BB3").oweReply.size(), 1u);
  EXPECT_EQ(desk.owed("BB3").oweReply.front().counterpart, "AA2");
  EXPECT_EQ(desk.owed("AA2").awaitingReply.size(), 1u);
  reply(desk, "BB3", "Left");
  EXPECT_THAT(debate(desk).owingParties, ElementsAre(desk.mark("AA2")));
  EXPECT_TRUE(desk.isWoken("AA2", "discussionReply"));
  EXPECT_THAT(desk.owed("BB3").oweReply, IsEmpty());
  reply(desk, "AA2", "Right");
  EXPECT_THAT(debate(desk).owingParties, ElementsAre(desk.mark("BB3")));
}

TEST(Debates, OfSeveralEverybodyOwesUntilTheySpeak) {
  Desk desk({"AA2", "BB3", "CC4"});
  desk.ask("AA2", "open_discussion", R"("body":"Which way?")");
  EXPECT_THAT(debate(desk).addressedTo, UnorderedElementsAre(desk.mark("BB3"), desk.mark("CC4")));
  reply(desk, "BB3", "Left");
  EXPECT_THAT(debate(desk).owingParties, UnorderedElementsAre(desk.mark("AA2"), desk.mark("CC4")));
  reply(desk, "AA2", "Right");
  EXPECT_THAT(debate(desk).owingParties, UnorderedElementsAre(desk.mark("BB3"), desk.mark("CC4")));
}

TEST(Debates, WithNobodyElseHereThePersonIsAddressed) {
  Desk desk({"AA2"});
  desk.ask("AA2", "open_discussion", R"("body":"Which way?")");
  EXPECT_THAT(debate(desk).owingParties, ElementsAre("human"));
}

TEST(Debates, AnUnknownAddresseeIsRefusedAndNothingIsOpened) {
  Desk desk;
  EXPECT_TRUE(wasRefused(
      desk.ask("AA2", "open_discussion", R"("body":"?","tags":["BB3","Nobody"])"), "\"Nobody\""));
  EXPECT_TRUE(desk.board.discussions.empty());
}

TEST(Debates, TheEighthVolleyEscalatesAndThePersonSettlesThat) {
  Desk desk;
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["BB3"])");
  for (int volley = 1; volley < 8; ++volley) reply(desk, volley % 2 == 1 ? "BB3" : "AA2", "no");
  EXPECT_FALSE(debate(desk).escalated);
  reply(desk, "AA2", "no");
  EXPECT_TRUE(debate(desk).escalated);
  EXPECT_EQ(debate(desk).volleysSinceHuman, 8);
  EXPECT_TRUE(owes(debate(desk), human));
  EXPECT_TRUE(desk.isWoken("AA2", "discussionEscalated"));
  EXPECT_TRUE(desk.isWoken("BB3", "discussionEscalated"));
  reply(desk, "BB3", "no");
  EXPECT_EQ(debate(desk).volleysSinceHuman, 9) << "it is not held up";
  EXPECT_TRUE(wasWritten(desk.person(personAnswer, R"("taskID":"d000001","body":"Left, please")")));
  EXPECT_EQ(debate(desk).volleysSinceHuman, 0);
  EXPECT_FALSE(debate(desk).escalated);
  EXPECT_FALSE(owes(debate(desk), human));
}

TEST(Debates, AnOpenOneHoldsItsTaskBackUntilItIsResolved) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("AA2", id);
  desk.ask("AA2", "open_discussion", Desk::on(id) + R"(,"body":"Which way?")");
  EXPECT_EQ(desk.view("AA2", id).openDiscussions, 1);
  const std::string done = Desk::on(id) + R"(,"summary":"did it")";
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "complete_task", done), "d000001"));
  const auto resolved = desk.ask("BB3", "resolve_discussion", firstID + R"(,"body":"Left it is")");
  EXPECT_EQ(resolved.discussion->resolution, "Left it is");
  EXPECT_EQ(resolved.discussion->state, "resolved");
  EXPECT_TRUE(desk.isWoken("AA2", "discussionResolved " + id));
  EXPECT_THAT(desk.owed("AA2").awaitingReply, IsEmpty());
  EXPECT_TRUE(wasWritten(desk.ask("AA2", "complete_task", done)));
  EXPECT_TRUE(
      wasRefused(desk.ask("AA2", "reply_discussion", firstID + R"(,"body":"but")"), "resolved"));
}

TEST(Debates, ABoardLevelOneHoldsBackTheProposalThatTheGoalIsComplete) {
  Desk desk;
  desk.ask("AA2", "set_goal", R"("name":"Ship")");
  desk.ask("AA2", "open_discussion", R"("body":"Is it done?")");
  EXPECT_TRUE(wasRefused(desk.ask("AA2", "propose_goal_complete"), "d000001"));
}

TEST(Debates, ALongVolleyIsCutAndTheNoticeSaysSo) {
  Desk desk;
  desk.ask("AA2", "open_discussion", R"("body":"Which way?")");
  const auto exact = desk.ask("BB3", "reply_discussion",
                              text::cat(firstID, R"(,"body":")", std::string(2000, 'x'), "\""));
  EXPECT_EQ(exact.notice, std::nullopt);
  const auto longer = desk.ask("AA2", "reply_discussion",
                               text::cat(firstID, R"(,"body":")", std::string(2001, 'x'), "\""));
  EXPECT_EQ(longer.discussion->volleys.back().body.size(), 2000u);
  EXPECT_THAT(longer.notice.value_or(""), ::testing::HasSubstr("2000 characters"));
}

TEST(Debates, WhoeverSpeaksBecomesAParty) {
  Desk desk({"AA2", "BB3", "CC4"});
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["BB3"])");
  EXPECT_FALSE(isParty(debate(desk), desk.mark("CC4")));
  reply(desk, "CC4", "Straight on");
  EXPECT_TRUE(isParty(debate(desk), desk.mark("CC4")));
  EXPECT_TRUE(desk.isWoken("BB3", "discussionReply"));
}

TEST(Debates, OneWhoseAddresseesHaveAllLeftPassesToThePerson) {
  struct Row {
    const char* name;
    void (*leave)(Desk&, std::string_view handle);
  };
  const Row rows[] = {
      {"left", [](Desk& desk, std::string_view handle) { desk.ask(handle, "unregister"); }},
      {"lapsed",
       [](Desk& desk, std::string_view handle) {
         desk.board.seats.touch(desk.seat(handle).id)->leaseUntilMs = desk.at.nowMs + 1000;
         desk.pass(1);
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Desk desk({"AA2", "BB3", "CC4"});
    desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["BB3","CC4"])");
    row.leave(desk, "BB3");
    EXPECT_FALSE(debate(desk).escalated);
    row.leave(desk, "CC4");
    EXPECT_TRUE(debate(desk).escalated);
    EXPECT_TRUE(owes(debate(desk), human));
    EXPECT_TRUE(desk.isWoken("AA2", "discussionEscalated"));
  }
}

TEST(Debates, OneThatIsBeforeThePersonStaysThereWhenItsOpenerSpeaksAgain) {
  Desk desk({"AA2", "BB3"});
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["BB3"])");
  desk.ask("BB3", "unregister");
  reply(desk, "AA2", "Anybody?");
  EXPECT_TRUE(debate(desk).escalated);
  EXPECT_TRUE(owes(debate(desk), human));
}

TEST(Debates, OneThatNobodyHereCanAnswerIsThePersonsAtOnce) {
  Desk desk({"AA2", "BB3"});
  desk.board.seats.touch(desk.seat("BB3").id)->leaseUntilMs = desk.at.nowMs + 1000;
  desk.pass(1);
  desk.ask("AA2", "open_discussion",
           text::cat(R"("body":"Which way?","tags":[")", desk.mark("BB3"), R"("])"));
  EXPECT_TRUE(owes(debate(desk), human));
}

TEST(Debates, WhatThePersonAnsweredIsForWhoeverIsLeftAndDoesNotComeBack) {
  Desk desk({"AA2", "BB3"});
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["BB3"])");
  reply(desk, "BB3", "Left");
  desk.ask("AA2", "unregister");
  ASSERT_TRUE(owes(debate(desk), human));
  EXPECT_TRUE(wasWritten(desk.person(personAnswer, R"("taskID":"d000001","body":"Right")")));
  EXPECT_FALSE(debate(desk).escalated);
  EXPECT_THAT(debate(desk).owingParties, ElementsAre(desk.mark("BB3")));
}

TEST(Debates, WhatThePersonAnsweredWhenAllAreGoneWaitsForTheirComingBack) {
  Desk desk({"AA2", "BB3"});
  desk.ask("AA2", "open_discussion", R"("body":"Which way?","tags":["BB3"])");
  desk.pass(desk.at.leaseMs / 1000);
  ASSERT_TRUE(owes(debate(desk), human));
  EXPECT_TRUE(wasWritten(desk.person(personAnswer, R"("taskID":"d000001","body":"Right")")));
  EXPECT_FALSE(debate(desk).escalated);
  EXPECT_FALSE(owes(debate(desk), human));
  EXPECT_TRUE(desk.isWoken("BB3", "discussionReply"));
  EXPECT_EQ(desk.owed("BB3").oweReply.size(), 1u);
}

}  // namespace
}  // namespace quillpost::board
