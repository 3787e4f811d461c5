#include "board/rules/readiness.h"

#include "board/desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;

TEST(Readiness, ATaskIsReadyWhenAllItWaitsOnIsDone) {
  struct Row {
    const char* name;
    TaskState first;
    TaskState second;
    bool ready;
  };
  const Row rows[] = {
      {"both open", TaskState::open, TaskState::open, false},
      {"one done", TaskState::done, TaskState::open, false},
      {"one claimed", TaskState::done, TaskState::claimed, false},
      {"one declined", TaskState::done, TaskState::rejected, false},
      {"both done", TaskState::done, TaskState::done, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Desk desk;
    const std::string one = desk.add("one"), two = desk.add("two");
    const std::string last =
        desk.add("last", text::cat(R"("waitsOn":[")", one, R"(",")", two, R"("])"));
    desk.board.tasks.touch(one)->state = row.first;
    desk.board.tasks.touch(two)->state = row.second;
    EXPECT_EQ(isReady(desk.board, desk.task(last)), row.ready);
    EXPECT_EQ(desk.view("AA2", last).ready, row.ready);
  }
}

TEST(Readiness, AnIdThatNamesNoTaskHoldsNothingUpAndIsReported) {
  Desk desk;
  const std::string id = desk.add("one", R"("waitsOn":["t999999"])");
  EXPECT_TRUE(isReady(desk.board, desk.task(id)));
  EXPECT_THAT(unresolved(desk.board, desk.task(id).waitsOn), ElementsAre("t999999"));
  EXPECT_THAT(*desk.view("AA2", id).unresolvedWaitsOn, ElementsAre("t999999"));
}

TEST(Readiness, ACircleIsSeenAroundCorners) {
  Desk desk;
  const std::string one = desk.add("one");
  const std::string two = desk.add("two", text::cat(R"("waitsOn":[")", one, R"("])"));
  const std::string three = desk.add("three", text::cat(R"("waitsOn":[")", two, R"("])"));
  EXPECT_TRUE(wouldWaitOnItself(desk.board, one, std::vector{three}));
  EXPECT_TRUE(wouldWaitOnItself(desk.board, one, std::vector{one}));
  EXPECT_FALSE(wouldWaitOnItself(desk.board, three, std::vector{one, two}));
  EXPECT_TRUE(wasRefused(
      desk.ask("AA2", "update_task", Desk::on(one) + text::cat(R"(,"waitsOn":[")", three, "\"]")),
      "wait on itself"));
}

TEST(Readiness, OnlyOpenTasksDependOnOne) {
  Desk desk;
  const std::string one = desk.add("one");
  const std::string two = desk.add("two", text::cat(R"("waitsOn":[")", one, R"("])"));
  desk.add("three");
  ASSERT_EQ(dependentsOf(desk.board, one).size(), 1u);
  EXPECT_EQ(dependentsOf(desk.board, one).front()->id, two);
  desk.board.tasks.touch(two)->state = TaskState::rejected;
  EXPECT_TRUE(dependentsOf(desk.board, one).empty());
}

TEST(Readiness, ATaskAimedAtAnAgentIsForOthersOnceThatAgentIsQuiet) {
  Desk desk;
  const std::string id =
      desk.add("one", text::cat(R"("routedToFingerprint":")", desk.mark("BB3"), "\""));
  EXPECT_EQ(desk.task(id).routedTo, "BB3") << "a fingerprint becomes the handle it stands for";
  EXPECT_TRUE(desk.view("AA2", id).routedToLive);
  EXPECT_TRUE(wasRefused(desk.claim("AA2", id), "handed to BB3"));
  desk.pass(599);
  EXPECT_TRUE(desk.view("AA2", id).routedToLive);
  desk.pass(1);
  EXPECT_FALSE(desk.view("AA2", id).routedToLive);
  EXPECT_TRUE(wasWritten(desk.claim("AA2", id)));
}

TEST(Readiness, WhateverMakesATaskTakeableEndsTheWaitsOfOthers) {
  struct Row {
    const char* name;
    const char* waitsOn;
    void (*move)(Desk&, const std::string& id);
  };
  const Row rows[] = {
      {"it waits on less", "t000001",
       [](Desk& desk, const std::string& id) {
         desk.ask("AA2", "update_task", Desk::on(id) + R"(,"waitsOn":[])");
       }},
      {"its addressee leaves", "t777777",
       [](Desk& desk, const std::string&) { desk.ask("BB3", "unregister"); }},
      {"its addressee falls silent", "t777777",
       [](Desk& desk, const std::string&) { desk.pass(600); }},
      {"it is meant for nobody any more", "t777777",
       [](Desk& desk, const std::string& id) {
         desk.ask("AA2", "update_task", Desk::on(id) + R"(,"routedToFingerprint":"")");
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Desk desk({"AA2", "BB3", "CC4"});
    desk.add("first");
    const std::string id =
        desk.add("one", text::cat(R"("waitsOn":[")", row.waitsOn, R"("],"routedToFingerprint":")",
                                  desk.mark("BB3"), "\""));
    const int64_t rev = desk.board.counted().rev;
    row.move(desk, id);
    EXPECT_TRUE(hasMoved(desk.board, desk.seat("CC4"), {rev, {id}, false}));
  }
}

TEST(Readiness, WhoeverATaskIsGivenToByAnUpdateIsWoken) {
  Desk desk;
  const std::string id = desk.add("one");
  desk.ask("AA2", "update_task",
           Desk::on(id) + text::cat(R"(,"routedToFingerprint":")", desk.mark("BB3"), "\""));
  EXPECT_TRUE(desk.isWoken("BB3", "taskAssigned " + id));
}

TEST(Readiness, AnAgentThatSpeaksAgainIsNoLongerSilent) {
  Desk desk;
  const std::string id =
      desk.add("one", text::cat(R"("routedToFingerprint":")", desk.mark("BB3"), "\""));
  desk.pass(600);
  EXPECT_FALSE(desk.view("AA2", id).routedToLive);
  desk.ask("BB3", "list_tasks");
  EXPECT_TRUE(desk.view("AA2", id).routedToLive);
  const int64_t rev = desk.board.counted().rev;
  desk.pass(600);
  EXPECT_TRUE(hasMoved(desk.board, desk.seat("AA2"), {rev, {}, false})) << "silent once more";
}

TEST(Readiness, AWaitOnADeclinedTaskStaysAndSaysWhy) {
  Desk desk;
  const std::string first = desk.add("first");
  const std::string waits = text::cat(R"("waitsOn":[")", first, R"("])");
  const std::string id = desk.add("one", waits);
  desk.settle();
  desk.ask("BB3", "reject_task", Desk::on(first) + R"(,"releaseReason":"no use")");
  EXPECT_TRUE(desk.isWoken("AA2", "taskRejected " + first)) << "it filed what waits";
  desk.ask("BB3", "comment_task", Desk::on(first) + R"(,"note":"really")");
  EXPECT_EQ(desk.view("AA2", id).parkedReason, "waits on t000001 (declined: no use)");
  EXPECT_FALSE(desk.view("AA2", id).ready);
  EXPECT_TRUE(wasRefused(desk.claim("BB3", id), "Declined and never to be done: " + first));
  const auto late = desk.ask("AA2", "add_task", R"("title":"late",)" + waits);
  EXPECT_NE(late.notice.value_or("").find("Declined"), std::string::npos);
}

TEST(Readiness, WhoeverMeansATaskForNobodyHereIsTold) {
  Desk desk;
  const auto added = desk.ask("AA2", "add_task", R"("title":"one","routedToFingerprint":"ZZ9")");
  EXPECT_NE(added.notice.value_or("").find("\"ZZ9\""), std::string::npos);
  EXPECT_EQ(desk.task("t000001").routedTo, "ZZ9");
  for (const char* to : {"ZZ8", "bb3", ""}) {
    const auto edited =
        desk.person(personEdit, text::cat(Desk::on("1"), R"(,"routedToFingerprint":")", to, "\""));
    EXPECT_EQ(edited.notice.has_value(), *to == 'Z') << to;
  }
}

TEST(Readiness, ACircleThatANewTaskWouldCloseIsRefused) {
  Desk desk;
  const std::string one = desk.add("one", R"("waitsOn":["t000002"])");
  EXPECT_TRUE(wasRefused(
      desk.ask("AA2", "add_task", text::cat(R"("title":"two","waitsOn":[")", one, R"("])")),
      "wait on itself"));
  EXPECT_EQ(desk.board.tasks.size(), 1u);
}

TEST(Readiness, AnUpdateSaysWhichIdsNameNoTask) {
  Desk desk;
  const std::string id = desk.add("one");
  const auto response = desk.ask("AA2", "update_task", Desk::on(id) + R"(,"waitsOn":["t777777"])");
  EXPECT_NE(response.notice.value_or("").find("t777777"), std::string::npos);
}

TEST(Readiness, ACircleIsSeenHoweverItsIdsAreWritten) {
  Desk desk;
  const std::string one = desk.add("one"), two = desk.add("two", R"("waitsOn":["t000001"])");
  EXPECT_TRUE(wasRefused(
      desk.ask("AA2", "update_task", text::cat(Desk::on(one), R"(,"waitsOn":[" )", two, R"( "])")),
      "wait on itself"));
  EXPECT_TRUE(desk.task(one).waitsOn.empty());
}

}  // namespace
}  // namespace quillpost::board
