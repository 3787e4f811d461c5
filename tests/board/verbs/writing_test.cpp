#include "board/desk.h"
#include "board/rules/limits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A board with one task, held by BB3.
struct HeldTask : Desk {
  std::string id = add("one");

  HeldTask() { claim("BB3", id); }

  TeamworkResponse update(std::string_view handle, std::string_view members) {
    return ask(handle, "update_task", text::cat(on(id), ",", members));
  }
  TeamworkResponse comment(std::string_view handle, std::string_view members) {
    return ask(handle, "comment_task", text::cat(on(id), ",", members));
  }
};

std::string letters(std::size_t count) { return std::string(count, 'x'); }

TEST(Updating, IsForTheHolder) {
  HeldTask desk;
  EXPECT_TRUE(wasRefused(desk.update("AA2", R"("note":"x")"), "do not hold"));
  EXPECT_TRUE(wasWritten(desk.update("BB3", R"("note":"x")")));
  desk.ask("BB3", "release_task", Desk::on(desk.id));
  EXPECT_TRUE(wasWritten(desk.update("AA2", R"("title":"better")"))) << "it filed the task";
  EXPECT_TRUE(wasRefused(desk.update("BB3", R"("title":"worse")"), "do not hold"));
}

TEST(Updating, ChangesOnlyWhatIsGiven) {
  HeldTask desk;
  desk.update("BB3", R"("body":"the brief","priority":3,"taskType":"bug","resources":["db"])");
  desk.update("BB3", R"("title":"better")");
  const TeamworkTask view = desk.view("AA2", desk.id);
  EXPECT_EQ(view.title, "better");
  EXPECT_EQ(view.body, "the brief");
  EXPECT_EQ(view.priority, 3);
  EXPECT_EQ(view.type, "bug");
  EXPECT_THAT(view.resources, ElementsAre("db"));
  desk.update("BB3", R"("taskType":"","resources":[],"waitsOn":[])");
  EXPECT_EQ(desk.view("AA2", desk.id).type, std::nullopt);
  EXPECT_THAT(desk.view("AA2", desk.id).resources, IsEmpty());
}

TEST(Updating, RenewsTheClaim) {
  HeldTask desk;
  desk.pass(600);
  desk.update("BB3", R"("note":"x")");
  EXPECT_EQ(desk.view("BB3", desk.id).claimLeaseSecondsRemaining, 900);
}

TEST(Updating, CutsProgressAtItsLimitAndSaysSo) {
  HeldTask desk;
  EXPECT_EQ(desk.update("BB3", text::cat(R"("note":")", letters(240), "\"")).notice, std::nullopt);
  const auto longer = desk.update("BB3", text::cat(R"("note":")", letters(241), "\""));
  EXPECT_THAT(longer.notice.value_or(""), HasSubstr("240"));
  EXPECT_EQ(desk.view("BB3", desk.id).log.back(), letters(240));
}

TEST(Updating, AProgressLineIsOneLineAndNeverAMarker) {
  HeldTask desk;
  desk.update("BB3", R"("note":"[[gist]] [[for]] one\ntwo")");
  EXPECT_EQ(desk.view("BB3", desk.id).log.back(), "one two");
}

TEST(Updating, ParkingLastsUntilTheWorkGoesOn) {
  HeldTask desk;
  desk.update("BB3", R"("parkReason":"waiting for the night")");
  EXPECT_EQ(desk.view("AA2", desk.id).parkedReason, "waiting for the night");
  desk.update("BB3", R"("note":"dark now")");
  EXPECT_EQ(desk.view("AA2", desk.id).parkedReason, std::nullopt);
}

TEST(Updating, AWaitThatIsParkedShowsOnWhatItsAgentHolds) {
  HeldTask desk;
  desk.ask("BB3", "heartbeat", R"("waiting":true,"parkReason":"for the tide")");
  EXPECT_EQ(desk.view("AA2", desk.id).parkedReason, "for the tide");
  desk.ask("BB3", "list_tasks");
  EXPECT_EQ(desk.view("AA2", desk.id).parkedReason, std::nullopt) << "it acts again";
}

TEST(Blockers, AreAskedAndAnswered) {
  HeldTask desk;
  desk.update("BB3", R"("blocked":true,"blockerQuestion":"May I?")");
  EXPECT_TRUE(desk.view("AA2", desk.id).blocked);
  EXPECT_EQ(desk.view("AA2", desk.id).blockerQuestion, "May I?");
  desk.person(personAnswer, Desk::on(desk.id) + R"(,"body":"You may")");
  EXPECT_FALSE(desk.view("AA2", desk.id).blocked);
  EXPECT_EQ(desk.view("AA2", desk.id).blockerAnswer, "You may");
  EXPECT_EQ(desk.view("AA2", desk.id).log.back(), "human: You may");
  EXPECT_TRUE(desk.isWoken("BB3", "blockerAnswered " + desk.id));
}

TEST(Blockers, AreOfferedOptionsThatThePersonPicksByNumber) {
  HeldTask desk;
  desk.update("BB3", R"("blocked":true,"blockerQuestion":"[[ask:{\"k\":\"decision\",)"
                     R"(\"o\":[\"red\",\"blue\"]}]] Which?")");
  EXPECT_TRUE(wasRefused(desk.person(personAnswer, Desk::on(desk.id) + R"(,"body":"3")"),
                         "1) red, 2) blue."));
  EXPECT_TRUE(desk.view("AA2", desk.id).blocked);
  desk.person(personAnswer, Desk::on(desk.id) + R"(,"body":"2")");
  EXPECT_EQ(desk.view("AA2", desk.id).blockerAnswer, "blue");
}

TEST(Blockers, WithoutAQuestionOrWithALongOneAreRefused) {
  HeldTask desk;
  EXPECT_TRUE(wasRefused(desk.update("BB3", R"("blocked":true)"), "blockerQuestion"));
  EXPECT_TRUE(wasRefused(
      desk.update("BB3", text::cat(R"("blocked":true,"blockerQuestion":")", letters(141), "\"")),
      "140"));
  EXPECT_FALSE(desk.view("AA2", desk.id).blocked);
  EXPECT_TRUE(wasWritten(
      desk.update("BB3", text::cat(R"("blocked":true,"blockerQuestion":")", letters(140), "\""))));
}

TEST(Blockers, AreCutInEveryPartWithANotice) {
  HeldTask desk;
  const auto asked = desk.update(
      "BB3", text::cat(R"("blocked":true,"blockerQuestion":"[[ask:{\"k\":\"review\",\"a\":\")",
                       letters(1 << 20), R"(\"}]] Look?")"));
  EXPECT_THAT(asked.notice.value_or(""), HasSubstr("artifact was cut at 2000 characters"));
  EXPECT_LT(desk.task(desk.id).blockerQuestion.size(), 2100u);
}

TEST(Blockers, CanBeClearedByTheirAgent) {
  HeldTask desk;
  desk.update("BB3", R"("blocked":true,"blockerQuestion":"May I?")");
  desk.update("BB3", R"("blocked":false)");
  EXPECT_FALSE(desk.view("AA2", desk.id).blocked);
  EXPECT_EQ(desk.view("AA2", desk.id).blockerQuestion, std::nullopt);
}

TEST(Comments, NeedNoClaimAndATextOrASummary) {
  HeldTask desk;
  EXPECT_TRUE(wasWritten(desk.comment("AA2", R"("note":"nice")")));
  EXPECT_TRUE(wasWritten(desk.comment("AA2", R"("summary":"going well")")));
  EXPECT_TRUE(wasRefused(desk.comment("AA2", R"("note":" ","summary":" ")"), "text"));
  EXPECT_THAT(desk.view("BB3", desk.id).log, ElementsAre("AA2: nice", "[[gist]] going well"));
}

TEST(Comments, KeepOneCharacterLessThanTheLimitAndTheMark) {
  HeldTask desk;
  EXPECT_EQ(desk.comment("AA2", text::cat(R"("note":")", letters(2000), "\"")).notice,
            std::nullopt);
  EXPECT_EQ(desk.log(desk.id).back(), "AA2: " + letters(2000));
  const auto longer = desk.comment("AA2", text::cat(R"("note":")", letters(2001), "\""));
  EXPECT_EQ(desk.log(desk.id).back(), "AA2: " + letters(1999) + "…");
  EXPECT_THAT(longer.notice.value_or(""), HasSubstr("comment was cut at 2000 characters"));
}

TEST(Comments, AreAmendedOnlyWhileTheyAreTheLastEntry) {
  HeldTask desk;
  desk.comment("AA2", R"("note":"nise")");
  EXPECT_EQ(desk.comment("AA2", R"("note":"nice","editLast":true)").notice, std::nullopt);
  EXPECT_THAT(desk.view("BB3", desk.id).log, ElementsAre("AA2: nice"));
  desk.comment("BB3", R"("note":"thanks")");
  const auto late = desk.comment("AA2", R"("note":"very nice","editLast":true)");
  EXPECT_THAT(late.notice.value_or(""), HasSubstr("last entry"));
  EXPECT_THAT(desk.view("BB3", desk.id).log,
              ElementsAre("AA2: nice", "BB3: thanks", "AA2: very nice"));
}

TEST(Comments, TagWhoIsHereAndSayWhoIsNot) {
  HeldTask desk;
  const auto response =
      desk.comment("AA2", R"("note":"see?","tags":["@bb3","human","Nobody","AA2"])");
  EXPECT_THAT(response.notice.value_or(""), HasSubstr("\"Nobody\""));
  EXPECT_THAT(desk.task(desk.id).mentions, ElementsAre(desk.mark("BB3"), "human"));
  EXPECT_TRUE(desk.isWoken("BB3", "mentioned " + desk.id));
  desk.person(personAnswer, Desk::on(desk.id) + R"(,"body":"seen")");
  EXPECT_THAT(desk.task(desk.id).mentions, ElementsAre(desk.mark("BB3")));
  EXPECT_TRUE(desk.isWoken("AA2", "humanReplied " + desk.id));
}

TEST(Comments, AreAmendedTogetherWithASummary) {
  HeldTask desk;
  desk.comment("AA2", R"("note":"nise")");
  for (const char* gist : {"one", "two"}) {
    const auto response =
        desk.comment("AA2", text::cat(R"("note":"nice","editLast":true,"summary":")", gist, "\""));
    EXPECT_EQ(response.notice, std::nullopt);
  }
  EXPECT_THAT(desk.log(desk.id), ElementsAre("AA2: nice", "[[gist]] one", "[[gist]] two"));
}

TEST(Limits, WhatIsFiledIsCutWithANotice) {
  Desk desk;
  const auto filed = desk.ask(
      "AA2", "add_task",
      text::cat(R"("title":")", letters(2001), R"(","body":")", letters(briefLimit + 1), "\""));
  EXPECT_THAT(filed.notice.value_or(""), HasSubstr("title was cut at 2000 characters"));
  EXPECT_THAT(filed.notice.value_or(""), HasSubstr("brief was cut at 256 KB"));
  EXPECT_EQ(desk.task("t000001").title.size(), lineLimit);
  EXPECT_EQ(briefOf(desk.board, "t000001").size(), briefLimit);
  const auto updated =
      desk.ask("AA2", "update_task",
               text::cat(Desk::on("t000001"), R"(,"body":")", letters(briefLimit + 1), "\""));
  EXPECT_THAT(updated.notice.value_or(""), HasSubstr("256 KB"));
}

}  // namespace
}  // namespace quillpost::board
