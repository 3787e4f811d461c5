#include "board/rules/views.h"

#include "board/desk.h"
#include "board/rules/debates.h"
#include "board/rules/limits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Views, TheLogIsToldInLinesThatSayWhatTheyAre) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const std::string id = desk.add("one", R"("summary":"the gist")");
  desk.ask("AA2", "assign_task", Desk::on(id) + R"(,"to":"BB3")");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"half done")");
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"good")");
  EXPECT_THAT(
      desk.view("AA2", id).log,
      ElementsAre("[[gist]] the gist", "[[for]] handed to BB3 by AA2", "half done", "AA2: good"));
}

TEST(Views, ATaskThatIsDroppedOverAndOverIsThrashing) {
  Desk desk;
  const std::string id = desk.add("one");
  for (int attempt = 1; attempt <= 4; ++attempt) {
    desk.claim("BB3", id);
    EXPECT_EQ(desk.view("AA2", id).thrashing, attempt > 3) << attempt;
    if (attempt < 4) desk.ask("BB3", "release_task", Desk::on(id));
  }
  desk.ask("BB3", "complete_task", Desk::on(id) + R"(,"summary":"did it")");
  EXPECT_FALSE(desk.view("AA2", id).thrashing);
}

TEST(Views, AnAgentThatHasLongBeenSilentIsQuiet) {
  Desk desk;
  desk.pass(599);
  EXPECT_EQ(agentView(desk.board, desk.seat("BB3"), desk.seat("AA2"), desk.at).quietForSeconds,
            std::nullopt);
  desk.pass(1);
  EXPECT_EQ(agentView(desk.board, desk.seat("BB3"), desk.seat("AA2"), desk.at).quietForSeconds,
            600);
}

TEST(Views, AnAgentThatListensAndHoldsNothingIsIdle) {
  Desk desk;
  const auto roster = [&] {
    return agentView(desk.board, desk.seat("BB3"), desk.seat("AA2"), desk.at);
  };
  desk.ask("BB3", "heartbeat", R"("waiting":true,"standDown":true)");
  EXPECT_TRUE(roster().idle);
  EXPECT_TRUE(roster().stoodDown);
  desk.claim("BB3", desk.add("one"));
  EXPECT_FALSE(roster().idle);
  EXPECT_FALSE(roster().stoodDown) << "it has taken something up";
  EXPECT_EQ(roster().activeClaims, 1);
}

TEST(Views, ATaskTellsOfItsOpenDiscussionsAndHowManyOfThemAreForTheHuman) {
  Desk desk;
  const std::string id = desk.add("one");
  for (int count = 0; count < 2; ++count) {
    desk.ask("AA2", "open_discussion", Desk::on(id) + R"(,"body":"Which way?","tags":["BB3"])");
  }
  for (int volley = 1; volley <= 8; ++volley) {
    desk.ask(volley % 2 == 1 ? "BB3" : "AA2", "reply_discussion",
             R"("discussionID":"d000001","body":"no")");
  }
  EXPECT_EQ(desk.view("AA2", id).openDiscussions, 2);
  EXPECT_EQ(desk.view("AA2", id).escalatedDiscussions, 1);
  EXPECT_EQ(desk.view("AA2", id).discussions.size(), 2u);
}

TEST(Views, ThePlanTellsOfTheOthersHere) {
  Desk desk({"AA2", "BB3", "CC4"});
  desk.sit("DD5");
  EXPECT_EQ(planView(desk.board, desk.seat("AA2")).otherLocalAgents, 2);
  EXPECT_EQ(audienceFor(desk.board, desk.seat("AA2")).otherLocalAgents, 2);
  EXPECT_FALSE(audienceFor(desk.board, desk.seat("AA2")).shared);
}

TEST(Obligations, AreClearWhenNothingIsOpen) {
  Desk desk;
  desk.add("one");
  EXPECT_TRUE(desk.owed("AA2").clear);
  desk.sit("CC4");
  EXPECT_TRUE(desk.owed("CC4").clear) << "nobody is there to owe anything";
}

TEST(Obligations, AHeldTaskIsOwedAndAskedAboutOnlyAfterAWhile) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  EXPECT_THAT(desk.owed("BB3").tasksHeld, ElementsAre(id));
  EXPECT_FALSE(desk.owed("BB3").clear);
  EXPECT_THAT(desk.owed("BB3").idleHeld, IsEmpty());
  desk.pass(301);
  ASSERT_EQ(desk.owed("BB3").idleHeld.size(), 1u);
  EXPECT_TRUE(desk.owed("BB3").idleHeld.front().wroteNothingSinceClaim);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"at it")");
  EXPECT_THAT(desk.owed("BB3").idleHeld, IsEmpty());
}

TEST(Obligations, ASummaryGoesStaleWithProgressAndIsRefreshed) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  const auto progress = [&] { desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"more")"); };
  progress();
  progress();
  EXPECT_THAT(desk.owed("BB3").staleSummaries, IsEmpty());
  progress();
  ASSERT_EQ(desk.owed("BB3").staleSummaries.size(), 1u);
  EXPECT_EQ(desk.owed("BB3").staleSummaries.front().summaryBehindBy, 3);
  desk.ask("BB3", "comment_task", Desk::on(id) + R"(,"summary":"nearly there")");
  EXPECT_THAT(desk.owed("BB3").staleSummaries, IsEmpty());
}

TEST(Obligations, ATagIsOwedUntilItsBearerComments) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("AA2", "comment_task", Desk::on(id) + R"(,"note":"see?","tags":["BB3"])");
  EXPECT_THAT(desk.owed("BB3").mentionsToAnswer, ElementsAre(id));
  EXPECT_TRUE(desk.view("BB3", id).mentionsYou);
  EXPECT_FALSE(desk.view("AA2", id).mentionsYou);
  desk.ask("BB3", "comment_task", Desk::on(id) + R"(,"note":"I see")");
  EXPECT_TRUE(desk.owed("BB3").clear);
}

TEST(Obligations, ABlockerStaysOpenBeyondTheClaim) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"blocked":true,"blockerQuestion":"May I?")");
  desk.ask("BB3", "release_task", Desk::on(id));
  EXPECT_THAT(desk.owed("BB3").yourBlockersOpen, ElementsAre(id));
  desk.person(personAnswer, Desk::on(id) + R"(,"body":"yes")");
  EXPECT_TRUE(desk.owed("BB3").clear);
}

TEST(Views, AListShowsOfALogTheLastWordsAndTheLastSummary) {
  Desk desk;
  desk.person(personSquad, R"("approve":true)");
  const std::string id = desk.add("one", R"("body":"a brief","summary":"first gist")");
  desk.ask("AA2", "assign_task", Desk::on(id) + R"(,"to":"BB3")");
  desk.claim("BB3", id);
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"one")");
  desk.ask("BB3", "update_task", Desk::on(id) + R"(,"note":"two","summary":"last gist")");
  const TeamworkTask lean = leanView(desk.board, desk.task(id), desk.seat("AA2"), desk.at);
  EXPECT_EQ(lean.body, "");
  EXPECT_THAT(lean.log, ElementsAre("[[gist]] ", "[[for]] ", "", "two", "[[gist]] last gist"));
  EXPECT_EQ(desk.ask("AA2", "list_tasks").tasks->front().log, lean.log);
}

TEST(Views, ALogThatIsTooLongIsShownFromItsEnd) {
  Desk desk;
  const std::string id = desk.add("one");
  const std::string words(logBytesShown / 2 - 10, 'x');
  for (int i = 0; i < 4; ++i) {
    addLine(desk.board, *desk.board.tasks.touch(id), {"", LogKind::progress, "", "", words, 1});
  }
  const auto log = desk.view("AA2", id).log;
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0], "(2 earlier lines left out: the log is longer than an answer can be.)");
}

TEST(Obligations, AReviewIsOwedByThoseItIsAskedOfUntilOneHasGivenIt) {
  Desk desk({"AA2", "BB3", "CC4"});
  for (const char* handle : {"BB3", "CC4"}) desk.ask(handle, "register", R"("role":"reviewer")");
  const std::string id = desk.add("one");
  desk.claim("AA2", id);
  desk.ask("AA2", "request_review", Desk::on(id));
  for (const char* handle : {"BB3", "CC4"}) {
    ASSERT_EQ(desk.owed(handle).oweReply.size(), 1u);
    EXPECT_EQ(desk.owed(handle).oweReply.front().taskID, id);
    EXPECT_EQ(desk.owed(handle).oweReply.front().counterpart, "AA2");
  }
  EXPECT_THAT(desk.owed("AA2").oweReply, IsEmpty());
  desk.ask("BB3", "verify_task", Desk::on(id) + R"(,"approve":true)");
  EXPECT_THAT(desk.owed("CC4").oweReply, IsEmpty());
}

/// The bytes of an answer with these discussions or this task.
std::size_t sizeOf(const std::vector<TeamworkDiscussion>& discussions) {
  TeamworkPlan plan;
  plan.discussions = discussions;
  return json::encode(plan).size();
}

TEST(Views, ManyLongDiscussionsLeaveRoomForTheLatestVolleys) {
  Desk desk;
  const std::string id = desk.add("one");
  // Two thousand characters of six bytes each, once they are quoted.
  const std::string volley(volleyLimit, '\x01');
  for (int i = 0; i < 100; ++i) {
    TeamworkDiscussion discussion;
    discussion.question = "Which way?";
    discussion.openedBy = desk.mark("AA2");
    discussion.addressedTo = {desk.mark("BB3")};
    discussion.taskID = id;
    for (int64_t at = 1; at <= 10; ++at)
      discussion.volleys.push_back({desk.mark("AA2"), volley, at});
    openDebate(desk.board, std::move(discussion), 1);
  }
  const TeamworkPlan plan = planView(desk.board, desk.seat("BB3"));
  ASSERT_EQ(plan.discussions.size(), 100u);
  EXPECT_EQ(plan.discussions.back().volleys.size(), 10u);
  EXPECT_EQ(plan.discussions.front().volleys.size(), 0u);
  EXPECT_LT(sizeOf(plan.discussions), std::size_t{4} << 20);
  EXPECT_LT(sizeOf(desk.view("BB3", id).discussions), std::size_t{4} << 20);
}

TEST(Views, ALogOfCharactersThatAreLongWhenQuotedStillFitsAnAnswer) {
  Desk desk;
  Task& task = *desk.board.tasks.touch(desk.add("one"));
  for (int i = 0; i < 2000; ++i)
    addLine(desk.board, task, {"", LogKind::comment, "", "", std::string(commentLimit, '\x01'), 1});
  const TeamworkTask view = desk.view("BB3", task.id);
  EXPECT_THAT(view.log.front(), ::testing::HasSubstr("earlier lines left out"));
  EXPECT_LT(json::encode(view).size(), std::size_t{6} << 20);
}

}  // namespace
}  // namespace quillpost::board
